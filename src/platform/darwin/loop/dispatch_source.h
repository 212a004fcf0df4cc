// SPDX-License-Identifier: MIT
#pragma once

#include <dispatch/dispatch.h>

#include "base/unique_handle.h"

namespace nimbo {

struct DispatchSourceTraits {
  using Handle = dispatch_source_t;
  static Handle invalid() { return nullptr; }
  static void release(Handle source) {
    dispatch_source_cancel(source);
    dispatch_release(source);
  }
};
/// A source that has been resumed. On the main queue nothing of it is called any more once it is let go.
using DispatchSource = UniqueHandle<DispatchSourceTraits>;

}  // namespace nimbo
