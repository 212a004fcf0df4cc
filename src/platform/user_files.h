// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <filesystem>
#include <system_error>

#include "base/result.h"
#include "base/secret.h"

namespace nimbo {

/// Reads files that hold a secret. Any thread; may block for as long as the file system does.
class SecretFiles {
 public:
  virtual ~SecretFiles() = default;

  /// The whole file, of which no other copy stays in memory; an error for one above `maximumBytes`
  /// and for anything but a regular file. Links are followed; pipes and devices are not waited for.
  [[nodiscard]] virtual Result<Secret, std::error_code> read(const std::filesystem::path& file,
                                                             std::size_t maximumBytes) const = 0;
};

/// A folder that a tool is to run in.
struct PrivateFolder {
  enum class State {
    empty,
    occupied,  ///< it holds something, or its name is a symbolic link
  };
  State state = State::empty;
  /// Its own name, by which a program that runs in it knows it: links on the way are followed.
  std::filesystem::path path;
};

/// What is asked of the file system before somebody else's tool is run. Any thread.
class ToolFiles {
 public:
  virtual ~ToolFiles() = default;

  /// Whether there is a file, links followed, that this user may execute.
  [[nodiscard]] virtual bool isExecutable(const std::filesystem::path& file) const = 0;

  /// Makes the folder, and those above it, if they are missing; afterwards nobody but the user can
  /// enter it.
  [[nodiscard]] virtual Result<PrivateFolder, std::error_code> preparePrivateFolder(
      const std::filesystem::path& folder) const = 0;
};

}  // namespace nimbo
