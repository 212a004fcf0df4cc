// SPDX-License-Identifier: MIT
#include "platform/darwin/widgets/group_widget_center.h"

#import <Foundation/Foundation.h>

#include "platform/darwin/core/ns_text.h"

namespace nimbo {
namespace {

/// For this user alone.
NSDictionary<NSString*, id>* permissions(unsigned long mode) {
  return @{NSFilePosixPermissions : [NSNumber numberWithUnsignedLong:mode]};
}

}  // namespace

std::optional<std::filesystem::path> GroupWidgetCenter::container(const std::string& appGroup) const {
  NSURL* const folder =
      [NSFileManager.defaultManager containerURLForSecurityApplicationGroupIdentifier:nsText(appGroup)];
  if (folder == nil) return std::nullopt;
  return folder.fileSystemRepresentation;
}

bool GroupWidgetCenter::writeAtomically(const std::filesystem::path& file, std::string_view contents) const {
  @autoreleasepool {
    NSURL* const place = [NSURL fileURLWithPath:nsText(file.native())];
    NSURL* const folder = [NSURL fileURLWithPath:nsText(file.parent_path().native())];
    NSData* const data = [NSData dataWithBytes:contents.data() length:contents.size()];
    NSFileManager* const files = NSFileManager.defaultManager;
    return [files createDirectoryAtURL:folder withIntermediateDirectories:YES attributes:permissions(0700) error:nil] &&
           [data writeToURL:place options:NSDataWritingAtomic error:nil] &&
           [files setAttributes:permissions(0600) ofItemAtPath:nsText(file.native()) error:nil];
  }
}

// In reload_timelines.swift: WidgetKit has no other language.
void GroupWidgetCenter::reloadTimelines(const std::string& kind) {
  const auto reload = modules_.symbol("nimbo-timelines", "nimboReloadTimelines");
  if (reload) reinterpret_cast<void (*)(const char*)> (*reload)(kind.c_str());
}

}  // namespace nimbo
