// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string_view>

namespace nimbo {

// White space is what Unicode counts as such, line breaks included. Texts are UTF-8.

/// The bytes of the white-space character that `text` begins with; 0 for none.
[[nodiscard]] std::size_t leadingWhiteSpace(std::string_view text);
/// `text` without the white space at its ends.
[[nodiscard]] std::string_view trimmedWhiteSpace(std::string_view text);

}  // namespace nimbo
