// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace nimbo {

inline std::string_view textOf(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

/// Ends the program when something does not hold, for the fuzzer to report what led there.
inline void require(bool holds) {
  if (!holds) std::abort();
}

}  // namespace nimbo
