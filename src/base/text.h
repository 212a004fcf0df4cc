// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

namespace nimbo {

// Texts are UTF-8. Upper and lower case, digits and blanks are those of ASCII, in every locale.

inline constexpr std::string_view kBlanks = " \t\r\n";

/// `text` without blanks at its ends.
[[nodiscard]] std::string_view trimmed(std::string_view text);

/// Takes what stands before `separator` off `rest`, and the separator with it; all of it where there is none.
[[nodiscard]] std::string_view takeUntil(std::string_view& rest, char separator);

[[nodiscard]] bool isDigit(char character);
[[nodiscard]] char lowerCased(char character);
[[nodiscard]] std::string lowerCased(std::string_view text);
[[nodiscard]] bool equalsIgnoringCase(std::string_view text, std::string_view other);
[[nodiscard]] bool startsWithIgnoringCase(std::string_view text, std::string_view beginning);
[[nodiscard]] bool endsWithIgnoringCase(std::string_view text, std::string_view end);
/// `text` without any occurrence of `part`, which is not empty.
[[nodiscard]] std::string removedIgnoringCase(std::string_view text, std::string_view part);

/// The whole of `text` as a number such as -61.5 or 1e3, in every locale; absent when it is anything else or too large.
[[nodiscard]] std::optional<double> decimalNumber(std::string_view text);

struct CharacterReplacement {
  char character;
  std::string_view replacement;
};
[[nodiscard]] std::string replacedCharacters(std::string_view text,
                                             std::initializer_list<CharacterReplacement> replacements);

/// Every byte but letters, digits and those in `plain` as "%" and two hexadecimal digits.
[[nodiscard]] std::string percentEncoded(std::string_view bytes, std::string_view plain);

// White space is what Unicode counts as such, line breaks included.

/// The bytes of the white-space character that `text` begins with; 0 for none.
[[nodiscard]] std::size_t leadingWhiteSpace(std::string_view text);
/// `text` without white space at its ends.
[[nodiscard]] std::string_view trimmedWhiteSpace(std::string_view text);
/// In lower case, and each white-space character a space.
[[nodiscard]] std::string plainLowerCased(std::string_view text);

/// `bytes` as valid UTF-8 in which nothing breaks a line or steers a terminal or the direction of writing: each
/// such character becomes one U+FFFD, as what is ill-formed does.
[[nodiscard]] std::string printableLine(std::string_view bytes);

/// Whether `bytes` is well-formed UTF-8.
[[nodiscard]] bool isUtf8(std::string_view bytes);
/// `bytes` as valid UTF-8: every maximal part of an ill-formed sequence becomes one U+FFFD, as
/// chapter 3.9 of the Unicode Standard recommends.
[[nodiscard]] std::string repairedUtf8(std::string_view bytes);

}  // namespace nimbo
