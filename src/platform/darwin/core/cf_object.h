// SPDX-License-Identifier: MIT
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "base/unique_handle.h"

namespace nimbo {

template <class Ref>
struct CfTraits {
  using Handle = Ref;
  static Handle invalid() { return nullptr; }
  static void release(Handle object) { CFRelease(object); }
};

/// Owns one reference to an object of CoreFoundation: what a function gives whose name says Create or Copy.
template <class Ref>
using CfObject = UniqueHandle<CfTraits<Ref>>;

/// A reference of one's own to an object that somebody else holds.
template <class Ref>
[[nodiscard]] CfObject<Ref> retained(Ref object) {
  return CfObject<Ref>(static_cast<Ref>(const_cast<void*>(CFRetain(object))));
}

/// What is ill-formed becomes U+FFFD.
[[nodiscard]] CfObject<CFStringRef> makeCfString(std::string_view utf8);

// Of any object, which may be null; absent unless it is of that type.

[[nodiscard]] std::optional<std::string> textOf(CFTypeRef object);
/// A whole number within 64 bits, also one that is kept as 5.0.
[[nodiscard]] std::optional<std::int64_t> integerOf(CFTypeRef object);

}  // namespace nimbo
