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

/// Makes the folder and those it lies in, each with mode 0700. What is there already stays as it is,
/// even when it is no folder.
[[nodiscard]] std::error_code makePrivateFolders(const std::filesystem::path& folder);

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

/// A file's next version, complete and flushed beside it under another name until `commit` puts it in
/// place: readers see the old or the new one, never a part. One that is not committed leaves nothing.
class AtomicFile {
 public:
  /// What becomes of a symbolic link in the file's place.
  enum class Links {
    follow,  ///< what it points to is replaced and the link stays
    refuse,  ///< an error, as for everything else that is not a regular file
  };

  /// Writes with mode 0600 and makes missing folders with mode 0700. Refuses to replace anything but a
  /// regular file.
  [[nodiscard]] static Result<AtomicFile, std::error_code> prepare(const std::filesystem::path& file,
                                                                   std::string_view contents,
                                                                   Links links = Links::follow);

  /// The file that will be replaced: `file` itself or where its links lead.
  [[nodiscard]] const std::filesystem::path& target() const { return target_; }

  /// On an error the old version stands.
  [[nodiscard]] std::error_code commit();

 private:
  AtomicFile(std::filesystem::path target, TemporaryName temporary)
      : target_(std::move(target)), temporary_(std::move(temporary)) {}

  std::filesystem::path target_;
  TemporaryName temporary_;
};

/// Prepares and commits in one go.
[[nodiscard]] std::error_code writeFileAtomically(const std::filesystem::path& file, std::string_view contents,
                                                  AtomicFile::Links links = AtomicFile::Links::follow);

}  // namespace nimbo
