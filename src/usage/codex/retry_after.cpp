// SPDX-License-Identifier: MIT
#include "usage/codex/retry_after.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string_view>
#include <system_error>

#include "base/text.h"

namespace nimbo {
namespace {

constexpr double kShortestWait = 600;
// Beyond this a number means nothing, and a time so far away cannot be counted.
constexpr double kLongestWait = 366.0 * 24 * 3600;

std::optional<double> number(std::string_view text) {
  double value = 0;
  const char* const end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, value);
  if (result.ec != std::errc() || result.ptr != end || !std::isfinite(value)) return std::nullopt;
  return value;
}

}  // namespace

std::chrono::seconds rateLimitWait(const std::optional<std::string>& header) {
  const double asked = number(trimmedWhiteSpace(header.value_or(std::string()))).value_or(kShortestWait);
  const double wait = std::clamp(asked, kShortestWait, kLongestWait);
  return std::chrono::seconds(static_cast<std::chrono::seconds::rep>(std::ceil(wait)));
}

}  // namespace nimbo
