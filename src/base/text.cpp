// SPDX-License-Identifier: MIT
#include "base/text.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace nimbo {
namespace {

// What Unicode calls white space beyond ASCII, line breaks included.
constexpr std::array<std::string_view, 19> kWideWhiteSpace = {
    "\u0085", "\u00A0", "\u1680", "\u2000", "\u2001", "\u2002", "\u2003", "\u2004", "\u2005", "\u2006",
    "\u2007", "\u2008", "\u2009", "\u200A", "\u2028", "\u2029", "\u202F", "\u205F", "\u3000"};

constexpr bool isAscii(char character) { return static_cast<unsigned char>(character) < 0x80; }

constexpr bool isLetter(char character) {
  return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

bool sameIgnoringCase(char one, char other) { return lowerCased(one) == lowerCased(other); }

constexpr bool isAsciiWhiteSpace(char character) {
  return character == ' ' || (character >= '\t' && character <= '\r');
}

std::size_t trailingWhiteSpace(std::string_view text) {
  if (text.empty()) return 0;
  if (isAscii(text.back())) return isAsciiWhiteSpace(text.back()) ? 1 : 0;
  const auto* const found = std::find_if(kWideWhiteSpace.begin(), kWideWhiteSpace.end(),
                                         [&](std::string_view character) { return text.ends_with(character); });
  return found == kWideWhiteSpace.end() ? 0 : found->size();
}

}  // namespace

std::string_view trimmed(std::string_view text) {
  const auto first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::string_view takeUntil(std::string_view& rest, char separator) {
  const auto end = rest.find(separator);
  const std::string_view part = rest.substr(0, end);
  rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
  return part;
}

bool isDigit(char character) { return character >= '0' && character <= '9'; }

// Not std::tolower, whose answer depends on the locale.
char lowerCased(char character) {
  return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

std::string lowerCased(std::string_view text) {
  std::string lower(text);
  for (char& character : lower) character = lowerCased(character);
  return lower;
}

bool equalsIgnoringCase(std::string_view text, std::string_view other) {
  return std::equal(text.begin(), text.end(), other.begin(), other.end(), sameIgnoringCase);
}

bool startsWithIgnoringCase(std::string_view text, std::string_view beginning) {
  return equalsIgnoringCase(text.substr(0, beginning.size()), beginning);
}

std::string removedIgnoringCase(std::string_view text, std::string_view part) {
  std::string rest;
  for (;;) {
    const auto* const found = std::search(text.begin(), text.end(), part.begin(), part.end(), sameIgnoringCase);
    rest.append(text.begin(), found);
    if (found == text.end()) return rest;
    text.remove_prefix(static_cast<std::size_t>(found - text.begin()) + part.size());
  }
}

std::string replacedCharacters(std::string_view text, std::initializer_list<CharacterReplacement> replacements) {
  std::string result;
  for (const char character : text) {
    const auto* const found =
        std::find_if(replacements.begin(), replacements.end(),
                     [&](const CharacterReplacement& candidate) { return candidate.character == character; });
    if (found == replacements.end()) {
      result += character;
    } else {
      result += found->replacement;
    }
  }
  return result;
}

std::string percentEncoded(std::string_view bytes, std::string_view plain) {
  std::string encoded;
  for (const char byte : bytes) {
    if (isLetter(byte) || isDigit(byte) || plain.find(byte) != std::string_view::npos) {
      encoded += byte;
    } else {
      encoded += fmt::format("%{:02X}", static_cast<unsigned char>(byte));
    }
  }
  return encoded;
}

std::size_t leadingWhiteSpace(std::string_view text) {
  if (text.empty()) return 0;
  if (isAscii(text.front())) return isAsciiWhiteSpace(text.front()) ? 1 : 0;
  const auto* const found = std::find_if(kWideWhiteSpace.begin(), kWideWhiteSpace.end(),
                                         [&](std::string_view character) { return text.starts_with(character); });
  return found == kWideWhiteSpace.end() ? 0 : found->size();
}

std::string_view trimmedWhiteSpace(std::string_view text) {
  while (const std::size_t length = leadingWhiteSpace(text)) text.remove_prefix(length);
  while (const std::size_t length = trailingWhiteSpace(text)) text.remove_suffix(length);
  return text;
}

std::string plainLowerCased(std::string_view text) {
  std::string plain;
  plain.reserve(text.size());
  while (!text.empty()) {
    const std::size_t blank = leadingWhiteSpace(text);
    plain += blank > 0 ? ' ' : lowerCased(text.front());
    text.remove_prefix(std::max(blank, std::size_t{1}));
  }
  return plain;
}

}  // namespace nimbo
