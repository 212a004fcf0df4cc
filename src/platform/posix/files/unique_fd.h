// SPDX-License-Identifier: MIT
#pragma once

#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "base/unique_handle.h"

namespace nimbo {

struct FdTraits {
  using Handle = int;
  static Handle invalid() { return -1; }
  static void release(Handle descriptor) { ::close(descriptor); }
};
using UniqueFd = UniqueHandle<FdTraits>;

/// What `errno` says of the call that has just failed.
[[nodiscard]] inline std::error_code lastError() { return {errno, std::generic_category()}; }

}  // namespace nimbo
