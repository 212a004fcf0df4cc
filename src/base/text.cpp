// SPDX-License-Identifier: MIT
#include "base/text.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <locale>
#include <sstream>

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

// Of the white-space character that `isAt` finds in its place and whose outermost byte is `byte`; 0 for none.
template <class Predicate>
std::size_t whiteSpaceLength(char byte, Predicate isAt) {
  if (isAscii(byte)) return isAsciiWhiteSpace(byte) ? 1 : 0;
  const auto* const found = std::ranges::find_if(kWideWhiteSpace, isAt);
  return found == kWideWhiteSpace.end() ? 0 : found->size();
}

std::size_t trailingWhiteSpace(std::string_view text) {
  if (text.empty()) return 0;
  return whiteSpaceLength(text.back(), [&](std::string_view character) { return text.ends_with(character); });
}

constexpr std::string_view kReplacement = "\uFFFD";

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

// Control characters, line and paragraph separators, and the marks for the direction of writing.
bool isSteering(std::string_view character) {
  // What stands on either side of them: they themselves would be misleading here.
  constexpr std::array<std::array<std::string_view, 2>, 5> kNeighbours = {
      {{"\x7F", "\u00A0"}, {"\u061B", "\u061D"}, {"\u200D", "\u2010"}, {"\u2027", "\u202F"}, {"\u2065", "\u206A"}}};
  if (isAscii(character.front())) return character.front() < ' ' || character.front() == '\x7F';
  // UTF-8 is in the order of the code points.
  return std::ranges::any_of(kNeighbours,
                             [&](const auto& range) { return character > range[0] && character < range[1]; });
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

bool endsWithIgnoringCase(std::string_view text, std::string_view end) {
  return text.size() >= end.size() && equalsIgnoringCase(text.substr(text.size() - end.size()), end);
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

// By a stream, because std::from_chars of a double is too new for the oldest macOS.
std::optional<double> decimalNumber(std::string_view text) {
  if (text.starts_with('+') || text.find_first_not_of("0123456789.eE+-") != std::string_view::npos) return std::nullopt;
  std::istringstream stream{std::string(text)};
  stream.imbue(std::locale::classic());
  double number = 0;
  stream >> number;
  if (stream.fail() || !stream.eof()) return std::nullopt;
  return number;
}

std::string replacedCharacters(std::string_view text, std::initializer_list<CharacterReplacement> replacements) {
  std::string result;
  for (const char character : text) {
    const auto* const found = std::ranges::find(replacements, character, &CharacterReplacement::character);
    result += found == replacements.end() ? std::string_view(&character, 1) : found->replacement;
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
  return whiteSpaceLength(text.front(), [&](std::string_view character) { return text.starts_with(character); });
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

bool isUtf8(std::string_view bytes) {
  while (!bytes.empty()) {
    const Part part = firstPart(bytes);
    if (!part.wellFormed) return false;
    bytes.remove_prefix(part.length);
  }
  return true;
}

std::string repairedUtf8(std::string_view bytes) {
  if (std::ranges::all_of(bytes, isAscii)) return std::string(bytes);
  std::string text;
  text.reserve(bytes.size());
  while (!bytes.empty()) {
    const Part part = firstPart(bytes);
    text.append(part.wellFormed ? bytes.substr(0, part.length) : kReplacement);
    bytes.remove_prefix(part.length);
  }
  return text;
}

std::string printableLine(std::string_view bytes) {
  if (std::ranges::all_of(bytes, [](char byte) { return byte >= ' ' && byte != '\x7F'; })) return std::string(bytes);
  std::string text;
  text.reserve(bytes.size());
  while (!bytes.empty()) {
    const Part part = firstPart(bytes);
    const std::string_view character = bytes.substr(0, part.length);
    text.append(part.wellFormed && !isSteering(character) ? character : kReplacement);
    bytes.remove_prefix(part.length);
  }
  return text;
}

}  // namespace nimbo
