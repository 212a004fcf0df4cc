// SPDX-License-Identifier: MIT
#pragma once

#include <cerrno>
#include <system_error>

namespace nimbo {

/// What `errno` says of the call that has just failed.
[[nodiscard]] inline std::error_code lastError() { return {errno, std::generic_category()}; }

}  // namespace nimbo
