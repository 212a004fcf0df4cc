// SPDX-License-Identifier: MIT
#include "darwin/fakes/fake_core_foundation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <variant>

#include "base/text.h"

using namespace nimbo::fake;

struct __CFAllocator {};
struct __CFBoolean : Object {
  explicit __CFBoolean(bool isTrue) : Object(kBoolean, Count::no), value(isTrue) {}
  const bool value;
};
struct __CFNumber : Object {
  explicit __CFNumber(std::variant<std::int64_t, double> given) : Object(kNumber), value(given) {}
  const std::variant<std::int64_t, double> value;
};
struct __CFDate : Object {
  explicit __CFDate(CFAbsoluteTime at) : Object(kDate), time(at) {}
  const CFAbsoluteTime time;
};
struct __CFData : Object {
  explicit __CFData(std::vector<UInt8> given) : Object(kData), bytes(std::move(given)) {}
  const std::vector<UInt8> bytes;
};

namespace {

const std::string& textOf(const void* string) { return static_cast<CFStringRef>(string)->utf8; }

class ReferenceCheck final : public testing::EmptyTestEventListener {
  void OnTestEnd(const testing::TestInfo& /*test*/) override {
    EXPECT_EQ(references.exchange(0), 0) << "references are left, or were given back too often";
  }
};
[[maybe_unused]] const bool kChecked = [] {
  testing::UnitTest::GetInstance()->listeners().Append(new ReferenceCheck);
  return true;
}();

/// How many bytes the character takes that begins there.
std::size_t lengthAt(const std::string& utf8, std::size_t at) {
  const auto lead = static_cast<unsigned char>(utf8[at]);
  return lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
}

/// Half of a character, which UTF-16 can hold alone and UTF-8 cannot.
bool isHalf(const std::string& utf8, std::size_t at) {
  return utf8[at] == '\xED' && static_cast<unsigned char>(utf8[at + 1]) >= 0xA0;
}

}  // namespace

namespace nimbo::fake {

std::atomic<long> references{0};

Held owned(CFTypeRef object) {
  const Held held(object);
  if (object != nullptr) CFRelease(object);
  return held;
}
Held text(std::string_view utf8Text) { return owned(new __CFString(std::string(utf8Text))); }
Held number(std::int64_t value) { return owned(CFNumberCreate(nullptr, kCFNumberSInt64Type, &value)); }
Held array(const std::vector<Held>& values) {
  auto* const made = new __CFArray;
  made->values = values;
  return owned(made);
}
Held dictionary(const std::map<std::string, Held>& values) {
  auto* const made = new __CFDictionary;
  for (const auto& [key, value] : values) made->values.emplace(key, std::pair(text(key), value));
  return owned(made);
}
std::string utf8(CFTypeRef string) { return textOf(string); }

}  // namespace nimbo::fake

extern "C" {

const CFAllocatorRef kCFAllocatorDefault = nullptr;

CFTypeRef CFRetain(CFTypeRef object) {
  if (objectOf(object).isCounted) {
    ++objectOf(object).held;
    ++references;
  }
  return object;
}

void CFRelease(CFTypeRef object) {
  if (!objectOf(object).isCounted) return;
  --references;
  if (--objectOf(object).held == 0) delete &objectOf(object);
}

CFTypeID CFGetTypeID(CFTypeRef object) { return objectOf(object).type; }

Boolean CFEqual(CFTypeRef object, CFTypeRef other) {
  if (object == other) return true;
  return objectOf(object).type == kString && objectOf(other).type == kString && textOf(object) == textOf(other);
}

CFTypeID CFStringGetTypeID() { return kString; }
CFStringRef CFStringCreateWithBytes(CFAllocatorRef /*allocator*/, const UInt8* bytes, CFIndex numBytes,
                                    CFStringEncoding encoding, Boolean /*isExternalRepresentation*/) {
  const std::string_view utf8Text(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(numBytes));
  if (encoding != kCFStringEncodingUTF8 || !nimbo::isUtf8(utf8Text)) return nullptr;
  return new __CFString(std::string(utf8Text));
}
CFIndex CFStringGetLength(CFStringRef string) {
  CFIndex units = 0;
  for (std::size_t at = 0; at < string->utf8.size(); at += lengthAt(string->utf8, at)) {
    units += lengthAt(string->utf8, at) == 4 ? 2 : 1;
  }
  return units;
}
CFIndex CFStringGetBytes(CFStringRef string, CFRange range, CFStringEncoding encoding, UInt8 lossByte,
                         Boolean /*isExternalRepresentation*/, UInt8* buffer, CFIndex maxBufLen, CFIndex* usedBufLen) {
  EXPECT_EQ(encoding, kCFStringEncodingUTF8);
  EXPECT_EQ(range.location, 0) << "only whole strings are known here";
  EXPECT_EQ(range.length, CFStringGetLength(string));
  CFIndex converted = 0;
  CFIndex used = 0;
  for (std::size_t at = 0; at < string->utf8.size();) {
    const std::size_t length = lengthAt(string->utf8, at);
    const bool isLost = isHalf(string->utf8, at);
    const std::string bytes = isLost ? std::string(1, static_cast<char>(lossByte)) : string->utf8.substr(at, length);
    if (isLost && lossByte == 0) break;
    if (buffer != nullptr && used + static_cast<CFIndex>(bytes.size()) > maxBufLen) break;
    if (buffer != nullptr) std::memcpy(buffer + used, bytes.data(), bytes.size());
    used += static_cast<CFIndex>(bytes.size());
    converted += length == 4 ? 2 : 1;
    at += length;
  }
  *usedBufLen = used;
  return converted;
}

CFTypeID CFNumberGetTypeID() { return kNumber; }
CFNumberRef CFNumberCreate(CFAllocatorRef /*allocator*/, CFNumberType type, const void* value) {
  if (type == kCFNumberFloat64Type) return new __CFNumber(*static_cast<const double*>(value));
  return new __CFNumber(*static_cast<const std::int64_t*>(value));
}
// False for a value that changes on the way; it is set all the same.
Boolean CFNumberGetValue(CFNumberRef number, CFNumberType type, void* value) {
  if (type == kCFNumberFloat64Type) {
    const double real = std::visit([](auto stored) { return static_cast<double>(stored); }, number->value);
    std::memcpy(value, &real, sizeof real);
    return true;
  }
  const double* const real = std::get_if<double>(&number->value);
  const bool fits = real == nullptr || (std::trunc(*real) == *real && *real >= -0x1p63 && *real < 0x1p63);
  const std::int64_t integer = real == nullptr ? std::get<std::int64_t>(number->value)
                               : fits          ? static_cast<std::int64_t>(*real)
                                               : INT64_MAX;
  std::memcpy(value, &integer, sizeof integer);
  return fits;
}
Boolean CFNumberIsFloatType(CFNumberRef number) { return std::holds_alternative<double>(number->value); }

static const __CFBoolean kTrue(true);
static const __CFBoolean kFalse(false);
const CFBooleanRef kCFBooleanTrue = &kTrue;
const CFBooleanRef kCFBooleanFalse = &kFalse;
CFTypeID CFBooleanGetTypeID() { return kBoolean; }
Boolean CFBooleanGetValue(CFBooleanRef given) { return given->value; }

CFTypeID CFDateGetTypeID() { return kDate; }
CFDateRef CFDateCreate(CFAllocatorRef /*allocator*/, CFAbsoluteTime at) { return new __CFDate(at); }
CFAbsoluteTime CFDateGetAbsoluteTime(CFDateRef given) { return given->time; }

CFTypeID CFDataGetTypeID() { return kData; }
CFDataRef CFDataCreate(CFAllocatorRef /*allocator*/, const UInt8* bytes, CFIndex length) {
  return new __CFData(std::vector<UInt8>(bytes, bytes + length));
}
CFIndex CFDataGetLength(CFDataRef given) { return static_cast<CFIndex>(given->bytes.size()); }
const UInt8* CFDataGetBytePtr(CFDataRef given) { return given->bytes.data(); }

// Collections hold objects of CoreFoundation alone, and dictionaries have strings as keys.
const CFArrayCallBacks kCFTypeArrayCallBacks{};
const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks{};
const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks{};

CFTypeID CFArrayGetTypeID() { return kArray; }
CFMutableArrayRef CFArrayCreateMutable(CFAllocatorRef /*allocator*/, CFIndex /*capacity*/,
                                       const CFArrayCallBacks* callBacks) {
  EXPECT_EQ(callBacks, &kCFTypeArrayCallBacks);
  return new __CFArray;
}
void CFArrayAppendValue(CFMutableArrayRef given, const void* value) { given->values.emplace_back(value); }
CFIndex CFArrayGetCount(CFArrayRef given) { return static_cast<CFIndex>(given->values.size()); }
const void* CFArrayGetValueAtIndex(CFArrayRef given, CFIndex index) {
  return given->values.at(static_cast<std::size_t>(index)).get();
}

CFTypeID CFDictionaryGetTypeID() { return kDictionary; }
CFMutableDictionaryRef CFDictionaryCreateMutable(CFAllocatorRef /*allocator*/, CFIndex /*capacity*/,
                                                 const CFDictionaryKeyCallBacks* keyCallBacks,
                                                 const CFDictionaryValueCallBacks* valueCallBacks) {
  EXPECT_EQ(keyCallBacks, &kCFTypeDictionaryKeyCallBacks);
  EXPECT_EQ(valueCallBacks, &kCFTypeDictionaryValueCallBacks);
  return new __CFDictionary;
}
void CFDictionarySetValue(CFMutableDictionaryRef given, const void* key, const void* value) {
  given->values.insert_or_assign(textOf(key), std::pair(Held(key), Held(value)));
}
CFIndex CFDictionaryGetCount(CFDictionaryRef given) { return static_cast<CFIndex>(given->values.size()); }
const void* CFDictionaryGetValue(CFDictionaryRef given, const void* key) {
  const auto found = given->values.find(textOf(key));
  return found == given->values.end() ? nullptr : found->second.second.get();
}
void CFDictionaryGetKeysAndValues(CFDictionaryRef given, const void** keys, const void** values) {
  for (const auto& [text, entry] : given->values) {
    *keys++ = entry.first.get();
    *values++ = entry.second.get();
  }
}

}  // extern "C"
