// SPDX-License-Identifier: MIT
#include "platform/linux/update/debian/package_file.h"

#include <fcntl.h>
#include <stdio.h>
#include <unistd.h>

#include <cerrno>

#include "platform/linux/files/atomic_file.h"
#include "platform/linux/files/unique_fd.h"

namespace nimbo {
namespace {

namespace fs = std::filesystem;

constexpr int kNamesTried = 100;

/// Renames the file, unless there is one of that name already.
std::error_code renameToFree(const std::string& file, const fs::path& name) {
  if (::renameat2(AT_FDCWD, file.c_str(), AT_FDCWD, name.c_str(), RENAME_NOREPLACE) == 0) return {};
  // Network file systems cannot; but they can give a file a second name.
  if (errno != EINVAL && errno != ENOSYS) return lastError();
  return ::link(file.c_str(), name.c_str()) == 0 ? std::error_code() : lastError();
}

/// "nimbo (2).deb"
std::string numbered(const fs::path& name, int number) {
  if (number == 0) return name.string();
  return name.stem().string() + " (" + std::to_string(number) + ")" + name.extension().string();
}

}  // namespace

Result<fs::path, std::error_code> savePackage(const fs::path& folder, const std::string& name,
                                              std::string_view package) {
  std::error_code error;
  fs::create_directories(folder, error);
  if (error) return tl::unexpected(error);
  const auto hidden = writeTemporaryFile(folder / name, package);
  if (!hidden) return tl::unexpected(hidden.error());
  for (int number = 0; number < kNamesTried; ++number) {
    const fs::path file = folder / numbered(name, number);
    error = renameToFree(hidden->get(), file);
    if (!error) return file;
    if (error != std::errc::file_exists) break;
  }
  return tl::unexpected(error);
}

}  // namespace nimbo
