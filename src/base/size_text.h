// SPDX-License-Identifier: MIT
#pragma once

#include <fmt/format.h>

#include <cstdint>
#include <string>

namespace nimbo {

/// "%.1f GB" of `bytes` ÷ 2^30, in every locale with a point.
[[nodiscard]] inline std::string gigabytesText(std::uint64_t bytes) {
  constexpr double kGigabyte = 1024.0 * 1024.0 * 1024.0;
  return fmt::format("{:.1f} GB", static_cast<double>(bytes) / kGigabyte);
}

/// A process's size: `gigabytesText` from 2^30 bytes on, "%.0f MB" of `bytes` ÷ 2^20 below.
[[nodiscard]] inline std::string footprintText(std::uint64_t bytes) {
  constexpr double kMegabyte = 1024.0 * 1024.0;
  if (bytes >> 30U != 0) return gigabytesText(bytes);
  return fmt::format("{:.0f} MB", static_cast<double>(bytes) / kMegabyte);
}

}  // namespace nimbo
