// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace nimbo {

// Upper and lower case are those of ASCII, in every locale. Texts are UTF-8.

[[nodiscard]] char lowerCased(char character);
[[nodiscard]] bool isDigit(char character);
[[nodiscard]] bool equalsIgnoringCase(std::string_view text, std::string_view lowerCase);
[[nodiscard]] bool startsWithIgnoringCase(std::string_view text, std::string_view lowerCase);

/// `text` without any occurrence of `lowerCase`, which is not empty.
[[nodiscard]] std::string removedIgnoringCase(std::string_view text, std::string_view lowerCase);

/// In lower case, and each white-space character a space.
[[nodiscard]] std::string plainLowerCased(std::string_view text);

}  // namespace nimbo
