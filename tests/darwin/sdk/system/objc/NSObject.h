// SPDX-License-Identifier: MIT
// What the program uses of the Objective-C runtime. Only for compilers that have no macOS.
#pragma once

#include <stdbool.h>

typedef bool BOOL;
typedef long NSInteger;
typedef unsigned long NSUInteger;
#define YES ((BOOL)1)
#define NO ((BOOL)0)
#define nil nullptr

@protocol NSObject
- (BOOL)isEqual:(id)other;
- (BOOL)isKindOfClass:(Class)kind;
@end

__attribute__((objc_root_class))
@interface NSObject<NSObject>
+ (Class)class;
+ (instancetype)alloc;
+ (instancetype)new;
- (instancetype)init;
@end
