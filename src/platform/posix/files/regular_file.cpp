// SPDX-License-Identifier: MIT
#include "platform/posix/files/regular_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "platform/posix/files/unique_fd.h"

namespace nimbo {

bool isExecutableFile(const std::filesystem::path& file) {
  struct stat status {};
  return ::stat(file.c_str(), &status) == 0 && S_ISREG(status.st_mode) && ::access(file.c_str(), X_OK) == 0;
}

Result<std::string, std::error_code> readRegularFile(const std::filesystem::path& file, std::size_t maximumBytes,
                                                     LinkedFile linked) {
  const auto text = readSecretFile(file, maximumBytes, linked);
  if (!text) return tl::unexpected(text.error());
  return std::string(text->view());
}

Result<Secret, std::error_code> readSecretFile(const std::filesystem::path& file, std::size_t maximumBytes,
                                               LinkedFile linked) {
  const int noFollow = linked == LinkedFile::refuse ? O_NOFOLLOW : 0;
  const UniqueFd descriptor(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY | noFollow));
  if (!descriptor) return tl::unexpected(lastError());
  struct stat status {};
  if (::fstat(descriptor.get(), &status) != 0) return tl::unexpected(lastError());
  if (!S_ISREG(status.st_mode)) return tl::unexpected(std::make_error_code(std::errc::not_supported));

  // One byte more than there should be, to see the end or a file that is too large.
  Secret text(std::min(static_cast<std::size_t>(status.st_size), maximumBytes) + 1);
  std::size_t filled = 0;
  while (true) {
    const ssize_t count = ::read(descriptor.get(), text.data() + filled, text.size() - filled);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return tl::unexpected(lastError());
    if (count == 0) break;
    filled += static_cast<std::size_t>(count);
    if (filled > maximumBytes) return tl::unexpected(std::make_error_code(std::errc::file_too_large));
    if (filled == text.size()) text.resize(2 * filled);
  }
  text.resize(filled);
  return text;
}

}  // namespace nimbo
