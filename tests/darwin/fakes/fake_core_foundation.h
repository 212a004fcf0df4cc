// SPDX-License-Identifier: MIT
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <atomic>
#include <map>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace nimbo::fake {

/// How many references to objects and handles of the system are out: of CoreFoundation, libdispatch and IOKit. Every
/// test must have given back what it took by its end.
extern std::atomic<long> references;

/// What every CoreFoundation object is here. Constants of the system are never counted.
struct Object {
  enum class Count { yes, no };
  explicit Object(CFTypeID id, Count counting = Count::yes) : type(id), isCounted(counting == Count::yes) {
    if (isCounted) ++references;
  }
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;
  virtual ~Object() = default;

  const CFTypeID type;
  const bool isCounted;
  mutable std::atomic<long> held{1};
};

enum Type : CFTypeID {
  kString = 7,
  kBoolean = 21,
  kNumber,
  kDate,
  kData,
  kArray,
  kDictionary,
  kRunLoopObject,
  kElement
};

inline const Object& objectOf(CFTypeRef reference) { return *static_cast<const Object*>(reference); }

/// A reference that is held by another object.
class Held {
 public:
  explicit Held(CFTypeRef object = nullptr) : object_(object == nullptr ? nullptr : CFRetain(object)) {}
  Held(const Held& other) : Held(other.object_) {}
  Held(Held&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  Held& operator=(Held other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }
  ~Held() {
    if (object_ != nullptr) CFRelease(object_);
  }
  [[nodiscard]] CFTypeRef get() const { return object_; }

 private:
  CFTypeRef object_;
};

/// A string as a test gives it; it belongs to who holds it.
[[nodiscard]] Held text(std::string_view utf8);
[[nodiscard]] Held number(std::int64_t value);
[[nodiscard]] Held dictionary(const std::map<std::string, Held>& values);
[[nodiscard]] Held array(const std::vector<Held>& values);
[[nodiscard]] std::string utf8(CFTypeRef string);

/// Takes over the reference that a function gave.
[[nodiscard]] Held owned(CFTypeRef object);

}  // namespace nimbo::fake

struct __CFString : nimbo::fake::Object {
  explicit __CFString(std::string given, Count counting = Count::yes)
      : Object(nimbo::fake::kString, counting), utf8(std::move(given)) {}
  const std::string utf8;  // in which halves of characters can stand alone
};
struct __CFArray : nimbo::fake::Object {
  __CFArray() : Object(nimbo::fake::kArray) {}
  std::vector<nimbo::fake::Held> values;
};
struct __CFDictionary : nimbo::fake::Object {
  __CFDictionary() : Object(nimbo::fake::kDictionary) {}
  std::map<std::string, std::pair<nimbo::fake::Held, nimbo::fake::Held>> values;
};
