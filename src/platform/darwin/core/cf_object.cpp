// SPDX-License-Identifier: MIT
#include "platform/darwin/core/cf_object.h"

#include "base/text.h"

namespace nimbo {

CfObject<CFStringRef> makeCfString(std::string_view utf8) {
  const std::string text = repairedUtf8(utf8);
  return CfObject<CFStringRef>(CFStringCreateWithBytes(kCFAllocatorDefault, reinterpret_cast<const UInt8*>(text.data()),
                                                       static_cast<CFIndex>(text.size()), kCFStringEncodingUTF8,
                                                       /*isExternalRepresentation=*/false));
}

std::optional<std::string> textOf(CFTypeRef object) {
  if (object == nullptr || CFGetTypeID(object) != CFStringGetTypeID()) return std::nullopt;
  const auto string = static_cast<CFStringRef>(object);
  const CFRange all = CFRangeMake(0, CFStringGetLength(string));
  // Half of a character, which UTF-16 may hold, has no UTF-8.
  constexpr UInt8 kInsteadOfHalves = '?';
  CFIndex size = 0;
  CFStringGetBytes(string, all, kCFStringEncodingUTF8, kInsteadOfHalves, false, nullptr, 0, &size);
  std::string text(static_cast<std::size_t>(size), '\0');
  CFStringGetBytes(string, all, kCFStringEncodingUTF8, kInsteadOfHalves, false, reinterpret_cast<UInt8*>(text.data()),
                   size, &size);
  return text;
}

std::optional<std::int64_t> integerOf(CFTypeRef object) {
  if (object == nullptr || CFGetTypeID(object) != CFNumberGetTypeID()) return std::nullopt;
  std::int64_t integer = 0;
  const auto isWhole = CFNumberGetValue(static_cast<CFNumberRef>(object), kCFNumberSInt64Type, &integer);
  return isWhole ? std::optional(integer) : std::nullopt;
}

}  // namespace nimbo
