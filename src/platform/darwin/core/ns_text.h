// SPDX-License-Identifier: MIT
#pragma once

#ifndef __OBJC__
#error "for Objective-C++ alone"
#endif

#import <Foundation/Foundation.h>

#include <string>
#include <string_view>

namespace nimbo {

/// Empty for what is not UTF-8.
[[nodiscard]] inline NSString* nsText(std::string_view text) {
  NSString* const made = [[NSString alloc] initWithBytes:text.data() length:text.size() encoding:NSUTF8StringEncoding];
  return made != nil ? made : @"";
}

/// Empty for nil.
[[nodiscard]] inline std::string text(NSString* nsText) {
  const char* const bytes = nsText.UTF8String;
  return bytes != nullptr ? bytes : "";
}

}  // namespace nimbo
