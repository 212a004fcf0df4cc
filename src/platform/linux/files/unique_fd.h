// SPDX-License-Identifier: MIT
#pragma once

#include <unistd.h>

#include "base/unique_handle.h"

namespace nimbo {

struct FdTraits {
  using Handle = int;
  static Handle invalid() { return -1; }
  static void release(Handle descriptor) { ::close(descriptor); }
};
using UniqueFd = UniqueHandle<FdTraits>;

}  // namespace nimbo
