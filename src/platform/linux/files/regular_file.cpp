// SPDX-License-Identifier: MIT
#include "platform/linux/files/regular_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>

#include "platform/linux/files/last_error.h"
#include "platform/linux/files/unique_fd.h"

namespace nimbo {
namespace {

FileTime fileTime(const timespec& time) { return {time.tv_sec, time.tv_nsec}; }

}  // namespace

bool isSettled(const FileStamp& stamp, std::int64_t secondsSince1970) {
  return std::abs(secondsSince1970 - stamp.changed.seconds) > 2;
}

Result<FileStamp, std::error_code> fileStamp(const std::filesystem::path& file) {
  struct stat status {};
  if (::stat(file.c_str(), &status) != 0) return tl::unexpected(lastError());
  return FileStamp{status.st_dev, status.st_ino, status.st_size, fileTime(status.st_mtim), fileTime(status.st_ctim)};
}

bool isExecutableFile(const std::filesystem::path& file) {
  struct stat status {};
  return ::stat(file.c_str(), &status) == 0 && S_ISREG(status.st_mode) && ::access(file.c_str(), X_OK) == 0;
}

Result<std::string, std::error_code> readRegularFile(const std::filesystem::path& file, std::size_t maximumBytes,
                                                     LinkedFile linked) {
  const int noFollow = linked == LinkedFile::refuse ? O_NOFOLLOW : 0;
  const UniqueFd descriptor(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY | noFollow));
  if (!descriptor) return tl::unexpected(lastError());
  struct stat status {};
  if (::fstat(descriptor.get(), &status) != 0) return tl::unexpected(lastError());
  if (!S_ISREG(status.st_mode)) return tl::unexpected(std::make_error_code(std::errc::not_supported));

  std::string text;
  std::array<char, 16384> buffer;
  while (true) {
    const ssize_t count = ::read(descriptor.get(), buffer.data(), buffer.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return tl::unexpected(lastError());
    if (count == 0) return text;
    text.append(buffer.data(), static_cast<std::size_t>(count));
    if (text.size() > maximumBytes) return tl::unexpected(std::make_error_code(std::errc::file_too_large));
  }
}

}  // namespace nimbo
