// SPDX-License-Identifier: MIT
#pragma once

#include <unistd.h>

#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include "base/result.h"
#include "base/unique_handle.h"

namespace nimbo {

/// A file's next version, complete and flushed beside it under another name until `commit` puts it in
/// place: readers see the old or the new one, never a part. One that is not committed leaves nothing.
class AtomicFile {
 public:
  /// Writes with mode 0600 and makes missing folders with mode 0700. When `file` is a symbolic link, what
  /// it points to is replaced and the link stays. Refuses to replace anything but a regular file.
  [[nodiscard]] static Result<AtomicFile, std::error_code> prepare(const std::filesystem::path& file,
                                                                   std::string_view contents);

  /// The file that will be replaced: `file` with links followed.
  [[nodiscard]] const std::filesystem::path& target() const { return target_; }

  /// On an error the old version stands.
  [[nodiscard]] std::error_code commit();

 private:
  struct TemporaryNameTraits {
    using Handle = std::string;
    static Handle invalid() { return {}; }
    static void release(const Handle& name) { ::unlink(name.c_str()); }
  };
  using TemporaryName = UniqueHandle<TemporaryNameTraits>;

  AtomicFile(std::filesystem::path target, TemporaryName temporary)
      : target_(std::move(target)), temporary_(std::move(temporary)) {}

  std::filesystem::path target_;
  TemporaryName temporary_;
};

/// Prepares and commits in one go.
[[nodiscard]] std::error_code writeFileAtomically(const std::filesystem::path& file, std::string_view contents);

}  // namespace nimbo
