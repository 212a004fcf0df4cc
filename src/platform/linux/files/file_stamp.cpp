// SPDX-License-Identifier: MIT
#include "platform/linux/files/file_stamp.h"

#include <sys/stat.h>

#include <cstdlib>

#include "platform/posix/files/unique_fd.h"

namespace nimbo {

bool isSettled(const FileStamp& stamp, std::int64_t secondsSince1970) {
  return std::abs(secondsSince1970 - stamp.changedSeconds) > 2;
}

Result<FileStamp, std::error_code> fileStamp(const std::filesystem::path& file) {
  struct stat status {};
  if (::stat(file.c_str(), &status) != 0) return tl::unexpected(lastError());
  return FileStamp{status.st_dev,         status.st_ino,         status.st_size,
                   status.st_mtim.tv_sec, status.st_ctim.tv_sec, status.st_ctim.tv_nsec};
}

}  // namespace nimbo
