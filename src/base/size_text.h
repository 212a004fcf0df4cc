// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

namespace nimbo {

/// "%.1f GB" of `bytes` ÷ 2^30, in every locale with a point.
[[nodiscard]] std::string gigabytesText(std::uint64_t bytes);

/// A process's size: `gigabytesText` from 2^30 bytes on, "%.0f MB" of `bytes` ÷ 2^20 below.
[[nodiscard]] std::string footprintText(std::uint64_t bytes);

}  // namespace nimbo
