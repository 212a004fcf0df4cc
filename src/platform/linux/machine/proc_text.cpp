// SPDX-License-Identifier: MIT
#include "platform/linux/machine/proc_text.h"

#include <algorithm>
#include <charconv>

namespace nimbo {
namespace {

constexpr std::string_view kBlanks = " \t";

template <class Number>
std::optional<Number> parseWhole(std::string_view word) {
  Number number{};
  const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
  return error == std::errc() && end == word.data() + word.size() ? std::optional(number) : std::nullopt;
}

}  // namespace

std::optional<std::string_view> takeLine(std::string_view& rest) {
  const auto end = rest.find('\n');
  if (end == std::string_view::npos) return std::nullopt;
  const std::string_view line = rest.substr(0, end);
  rest.remove_prefix(end + 1);
  return line;
}

std::string_view takeWord(std::string_view& rest) {
  rest.remove_prefix(std::min(rest.find_first_not_of(kBlanks), rest.size()));
  const std::string_view word = rest.substr(0, rest.find_first_of(kBlanks));
  rest.remove_prefix(word.size());
  return word;
}

std::optional<std::uint64_t> parseNumber(std::string_view word) { return parseWhole<std::uint64_t>(word); }

std::optional<double> parseDecimal(std::string_view word) { return parseWhole<double>(word); }

std::optional<std::uint64_t> parseKilobytes(std::string_view value) {
  constexpr std::uint64_t kLimit = std::uint64_t{1} << 50;
  const auto number = parseNumber(takeWord(value));
  if (!number || *number >= kLimit || takeWord(value) != "kB") return std::nullopt;
  return *number * 1024;
}

}  // namespace nimbo
