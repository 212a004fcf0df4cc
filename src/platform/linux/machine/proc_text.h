// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace nimbo {

/// Takes the next whole line off `rest`, without its newline. A last line without a newline was cut
/// off and does not count.
[[nodiscard]] std::optional<std::string_view> takeLine(std::string_view& rest);

/// Takes the next word (blanks and tabs separate) off `rest`; empty at the end.
[[nodiscard]] std::string_view takeWord(std::string_view& rest);

/// All of `word` as a decimal number; absent for anything else.
[[nodiscard]] std::optional<std::uint64_t> parseNumber(std::string_view word);
[[nodiscard]] std::optional<double> parseDecimal(std::string_view word);

/// Bytes of a value like "   16632 kB". Absent for anything else and from 2^60 bytes on, so that
/// a few of them can be added.
[[nodiscard]] std::optional<std::uint64_t> parseKilobytes(std::string_view value);

}  // namespace nimbo
