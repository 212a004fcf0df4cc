// SPDX-License-Identifier: MIT
#include "platform/darwin/settings/property_list.h"

#include <cstddef>
#include <cstring>
#include <nlohmann/json.hpp>
#include <utility>
#include <vector>

namespace nimbo {
namespace {

using nlohmann::json;

// Copying, comparing and converting a value recurse once per level.
constexpr int kMaximumDepth = 64;
constexpr std::uint8_t kDate = 1;  // the subtype of a binary value that is a CFAbsoluteTime

std::vector<std::uint8_t> bytesOf(const void* from, std::size_t size) {
  const auto* const bytes = static_cast<const std::uint8_t*>(from);
  return {bytes, bytes + size};
}

json jsonOf(CFPropertyListRef value, int depth);

json jsonOfNumber(CFNumberRef number) {
  if (const auto integer = CFNumberIsFloatType(number) ? std::nullopt : integerOf(number)) return *integer;
  double real = 0;
  CFNumberGetValue(number, kCFNumberFloat64Type, &real);
  return real;
}

json jsonOfArray(CFArrayRef values, int depth) {
  json array = json::array();
  for (CFIndex index = 0; index < CFArrayGetCount(values); ++index) {
    array.push_back(jsonOf(CFArrayGetValueAtIndex(values, index), depth));
  }
  return array;
}

json jsonOfDictionary(CFDictionaryRef dictionary, int depth) {
  const auto count = static_cast<std::size_t>(CFDictionaryGetCount(dictionary));
  std::vector<const void*> keys(count);
  std::vector<const void*> values(count);
  CFDictionaryGetKeysAndValues(dictionary, keys.data(), values.data());
  json object = json::object();
  for (std::size_t index = 0; index < count; ++index) {
    if (auto key = textOf(keys[index])) object[std::move(*key)] = jsonOf(values[index], depth);
  }
  return object;
}

json jsonOf(CFPropertyListRef value, int depth) {
  if (value == nullptr || depth > kMaximumDepth) return nullptr;
  if (auto text = textOf(value)) return std::move(*text);
  const CFTypeID type = CFGetTypeID(value);
  if (type == CFBooleanGetTypeID()) return CFBooleanGetValue(static_cast<CFBooleanRef>(value)) != 0;
  if (type == CFNumberGetTypeID()) return jsonOfNumber(static_cast<CFNumberRef>(value));
  if (type == CFArrayGetTypeID()) return jsonOfArray(static_cast<CFArrayRef>(value), depth + 1);
  if (type == CFDictionaryGetTypeID()) return jsonOfDictionary(static_cast<CFDictionaryRef>(value), depth + 1);
  if (type == CFDateGetTypeID()) {
    const CFAbsoluteTime time = CFDateGetAbsoluteTime(static_cast<CFDateRef>(value));
    return json::binary(bytesOf(&time, sizeof time), kDate);
  }
  if (type != CFDataGetTypeID()) return nullptr;
  const auto data = static_cast<CFDataRef>(value);
  return json::binary(bytesOf(CFDataGetBytePtr(data), static_cast<std::size_t>(CFDataGetLength(data))));
}

CFTypeRef makeNumber(const json& value) {
  const bool isTooLarge = value.is_number_unsigned() && value.get<std::uint64_t>() > INT64_MAX;
  if (value.is_number_float() || isTooLarge) {
    const auto real = value.get<double>();
    return CFNumberCreate(kCFAllocatorDefault, kCFNumberFloat64Type, &real);
  }
  const auto integer = value.get<std::int64_t>();
  return CFNumberCreate(kCFAllocatorDefault, kCFNumberSInt64Type, &integer);
}

CFTypeRef makeBinary(const json::binary_t& bytes) {
  CFAbsoluteTime time = 0;
  if (!bytes.has_subtype() || bytes.size() != sizeof time) {
    return CFDataCreate(kCFAllocatorDefault, bytes.data(), static_cast<CFIndex>(bytes.size()));
  }
  std::memcpy(&time, bytes.data(), sizeof time);
  return CFDateCreate(kCFAllocatorDefault, time);
}

CFTypeRef makeArray(const json& values) {
  auto* const array = CFArrayCreateMutable(kCFAllocatorDefault, 0, &kCFTypeArrayCallBacks);
  for (const json& value : values) {
    if (const auto made = propertyListOf(value)) CFArrayAppendValue(array, made.get());
  }
  return array;
}

CFTypeRef makeDictionary(const json& object) {
  auto* const dictionary = CFDictionaryCreateMutable(kCFAllocatorDefault, 0, &kCFTypeDictionaryKeyCallBacks,
                                                     &kCFTypeDictionaryValueCallBacks);
  for (const auto& [key, value] : object.items()) {
    if (const auto made = propertyListOf(value)) CFDictionarySetValue(dictionary, makeCfString(key).get(), made.get());
  }
  return dictionary;
}

}  // namespace

json jsonOf(CFPropertyListRef value) { return jsonOf(value, 0); }

CfObject<CFTypeRef> propertyListOf(const json& value) {
  const auto make = [&]() -> CFTypeRef {
    if (value.is_boolean()) return CFRetain(value.get<bool>() ? kCFBooleanTrue : kCFBooleanFalse);
    if (value.is_number()) return makeNumber(value);
    if (value.is_string()) return makeCfString(value.get_ref<const std::string&>()).detach();
    if (value.is_array()) return makeArray(value);
    if (value.is_object()) return makeDictionary(value);
    if (value.is_binary()) return makeBinary(value.get_binary());
    return nullptr;
  };
  return CfObject<CFTypeRef>(make());
}

}  // namespace nimbo
