// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace nimbo {

/// A fresh random identifier (RFC 4122, version 4) in capitals, from the system's random numbers.
[[nodiscard]] std::string makeUuid();

}  // namespace nimbo
