// SPDX-License-Identifier: MIT
#include "base/size_text.h"

#include <fmt/format.h>

namespace nimbo {

std::string gigabytesText(std::uint64_t bytes) {
  constexpr double kGigabyte = 1024.0 * 1024.0 * 1024.0;
  return fmt::format("{:.1f} GB", static_cast<double>(bytes) / kGigabyte);
}

std::string footprintText(std::uint64_t bytes) {
  constexpr double kMegabyte = 1024.0 * 1024.0;
  if (bytes >> 30U != 0) return gigabytesText(bytes);
  return fmt::format("{:.0f} MB", static_cast<double>(bytes) / kMegabyte);
}

}  // namespace nimbo
