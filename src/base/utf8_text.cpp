// SPDX-License-Identifier: MIT
#include "base/utf8_text.h"

#include <algorithm>
#include <cstddef>

namespace nimbo {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

struct Lead {
  std::size_t length = 0;  // 0: no sequence begins with this byte
  unsigned char secondFrom = 0x80;
  unsigned char secondTo = 0xBF;
};

// Table 3-7 of the Unicode Standard: the second byte's range keeps out overlong forms, surrogates
// and values above U+10FFFF.
Lead lead(unsigned char byte) {
  if (byte < 0x80) return {1};
  if (byte < 0xC2) return {};
  if (byte < 0xE0) return {2};
  if (byte == 0xE0) return {3, 0xA0, 0xBF};
  if (byte == 0xED) return {3, 0x80, 0x9F};
  if (byte < 0xF0) return {3};
  if (byte == 0xF0) return {4, 0x90, 0xBF};
  if (byte < 0xF4) return {4};
  if (byte == 0xF4) return {4, 0x80, 0x8F};
  return {};
}

struct Part {
  std::size_t length = 0;  // bytes that belong together, at least 1
  bool wellFormed = false;
};

Part firstPart(std::string_view bytes) {
  const auto at = [&](std::size_t index) { return static_cast<unsigned char>(bytes[index]); };
  const Lead expected = lead(at(0));
  if (expected.length == 0) return {1, false};
  std::size_t length = 1;
  while (length < std::min(expected.length, bytes.size())) {
    const unsigned char from = length == 1 ? expected.secondFrom : 0x80;
    const unsigned char to = length == 1 ? expected.secondTo : 0xBF;
    if (at(length) < from || at(length) > to) break;
    ++length;
  }
  return {length, length == expected.length};
}

}  // namespace

bool isUtf8(std::string_view bytes) {
  while (!bytes.empty()) {
    const Part part = firstPart(bytes);
    if (!part.wellFormed) return false;
    bytes.remove_prefix(part.length);
  }
  return true;
}

std::string repairedUtf8(std::string_view bytes) {
  const auto isAscii = [](char byte) { return static_cast<unsigned char>(byte) < 0x80; };
  if (std::all_of(bytes.begin(), bytes.end(), isAscii)) return std::string(bytes);
  std::string text;
  text.reserve(bytes.size());
  while (!bytes.empty()) {
    const Part part = firstPart(bytes);
    text.append(part.wellFormed ? bytes.substr(0, part.length) : kReplacement);
    bytes.remove_prefix(part.length);
  }
  return text;
}

}  // namespace nimbo
