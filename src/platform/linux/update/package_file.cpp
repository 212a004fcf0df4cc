// SPDX-License-Identifier: MIT
#include "platform/linux/update/package_file.h"

#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#include <cerrno>

#include "platform/linux/unique_fd.h"

namespace nimbo {
namespace {

namespace fs = std::filesystem;

constexpr int kMostNames = 100;

std::error_code lastError() { return {errno, std::generic_category()}; }

struct TemporaryNameTraits {
  using Handle = std::string;
  static Handle invalid() { return {}; }
  static void release(const Handle& name) { ::unlink(name.c_str()); }
};
using TemporaryName = UniqueHandle<TemporaryNameTraits>;

std::error_code writeAll(int descriptor, std::string_view contents) {
  while (!contents.empty()) {
    const ssize_t count = ::write(descriptor, contents.data(), contents.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return lastError();
    contents.remove_prefix(static_cast<std::size_t>(count));
  }
  return ::fsync(descriptor) == 0 ? std::error_code() : lastError();
}

/// Another name for the file, which must be nobody's.
std::error_code giveName(const std::string& file, const fs::path& name) {
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
  std::string hidden = (folder / ("." + name + ".XXXXXX")).string();
  const UniqueFd descriptor(::mkostemp(hidden.data(), O_CLOEXEC));
  if (!descriptor) return tl::unexpected(lastError());
  const TemporaryName temporary(hidden);
  error = writeAll(descriptor.get(), package);
  if (error) return tl::unexpected(error);
  for (int number = 0; number < kMostNames; ++number) {
    const fs::path file = folder / numbered(name, number);
    error = giveName(hidden, file);
    if (!error) return file;
    if (error != std::errc::file_exists) break;
  }
  return tl::unexpected(error);
}

}  // namespace nimbo
