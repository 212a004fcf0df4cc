// SPDX-License-Identifier: MIT
#pragma once

#include <unistd.h>

#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

#include "base/result.h"
#include "base/unique_handle.h"

namespace nimbo {

struct TemporaryNameTraits {
  using Handle = std::string;
  static Handle invalid() { return {}; }
  static void release(const Handle& name) { ::unlink(name.c_str()); }
};

/// The name of a file that is removed with it; `detach` it once the file has a better one.
using TemporaryName = UniqueHandle<TemporaryNameTraits>;

/// Writes and flushes a hidden file of mode 0600 beside where `file` is to be. On an error nothing is left.
[[nodiscard]] Result<TemporaryName, std::error_code> writeTemporaryFile(const std::filesystem::path& file,
                                                                        std::string_view contents);

}  // namespace nimbo
