// SPDX-License-Identifier: MIT
// What the program uses of UserNotifications, as Apple documents it.
#pragma once

#import <Foundation/Foundation.h>

#pragma clang assume_nonnull begin

@interface UNMutableNotificationContent : NSObject
@property(copy) NSString* title;
@property(copy) NSString* body;
@end
@class UNNotificationTrigger;
@interface UNNotificationRequest : NSObject
+ (instancetype)requestWithIdentifier:(NSString*)identifier
                              content:(UNMutableNotificationContent*)content
                              trigger:(nullable UNNotificationTrigger*)trigger;
@end
enum : NSUInteger { UNAuthorizationOptionAlert = 1 << 2 };
@interface UNUserNotificationCenter : NSObject
+ (UNUserNotificationCenter*)currentNotificationCenter;
- (void)requestAuthorizationWithOptions:(NSUInteger)options
                      completionHandler:(void (^)(BOOL granted, NSError* _Nullable error))completionHandler;
- (void)addNotificationRequest:(UNNotificationRequest*)request
         withCompletionHandler:(nullable void (^)(NSError* _Nullable error))completionHandler;
@end

#pragma clang assume_nonnull end
