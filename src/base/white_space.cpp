// SPDX-License-Identifier: MIT
#include "base/white_space.h"

#include <algorithm>
#include <array>

namespace nimbo {
namespace {

// What Unicode calls white space beyond ASCII, line breaks included.
constexpr std::array<std::string_view, 19> kWideWhiteSpace = {
    "\u0085", "\u00A0", "\u1680", "\u2000", "\u2001", "\u2002", "\u2003", "\u2004", "\u2005", "\u2006",
    "\u2007", "\u2008", "\u2009", "\u200A", "\u2028", "\u2029", "\u202F", "\u205F", "\u3000"};

constexpr bool isAscii(char character) { return static_cast<unsigned char>(character) < 0x80; }

constexpr bool isAsciiWhiteSpace(char character) {
  return character == ' ' || (character >= '\t' && character <= '\r');
}

/// The bytes of the character at the end of `text` where `edge` lies, if it is white space; 0 otherwise.
template <class IsAtEdge>
std::size_t whiteSpaceAt(char edge, IsAtEdge isAtEdge) {
  if (isAscii(edge)) return isAsciiWhiteSpace(edge) ? 1 : 0;
  const auto* const found = std::find_if(kWideWhiteSpace.begin(), kWideWhiteSpace.end(), isAtEdge);
  return found == kWideWhiteSpace.end() ? 0 : found->size();
}

std::size_t trailingWhiteSpace(std::string_view text) {
  return text.empty() ? 0 : whiteSpaceAt(text.back(), [&](auto character) { return text.ends_with(character); });
}

}  // namespace

std::size_t leadingWhiteSpace(std::string_view text) {
  return text.empty() ? 0 : whiteSpaceAt(text.front(), [&](auto character) { return text.starts_with(character); });
}

std::string_view trimmedWhiteSpace(std::string_view text) {
  while (const std::size_t length = leadingWhiteSpace(text)) text.remove_prefix(length);
  while (const std::size_t length = trailingWhiteSpace(text)) text.remove_suffix(length);
  return text;
}

}  // namespace nimbo
