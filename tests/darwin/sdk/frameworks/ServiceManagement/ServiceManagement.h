// SPDX-License-Identifier: MIT
// What the program uses of ServiceManagement, as Apple documents it.
#pragma once

#import <Foundation/Foundation.h>

#pragma clang assume_nonnull begin

typedef enum SMAppServiceStatus : NSInteger {
  SMAppServiceStatusNotRegistered = 0,
  SMAppServiceStatusEnabled = 1,
  SMAppServiceStatusRequiresApproval = 2,
  SMAppServiceStatusNotFound = 3,
} SMAppServiceStatus API_AVAILABLE(macos(13.0));

API_AVAILABLE(macos(13.0))
@interface SMAppService : NSObject
@property(class, readonly) SMAppService* mainAppService;
@property(readonly) SMAppServiceStatus status;
- (BOOL)registerAndReturnError:(NSError* _Nullable* _Nullable)error;
- (BOOL)unregisterAndReturnError:(NSError* _Nullable* _Nullable)error;
+ (void)openSystemSettingsLoginItems;
@end

#pragma clang assume_nonnull end
