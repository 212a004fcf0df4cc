// SPDX-License-Identifier: MIT
#include "platform/linux/files/temporary_file.h"

#include <fcntl.h>
#include <stdlib.h>

#include <cerrno>

#include "platform/linux/files/last_error.h"
#include "platform/linux/files/unique_fd.h"

namespace nimbo {
namespace {

std::error_code writeAll(int descriptor, std::string_view contents) {
  while (!contents.empty()) {
    const ssize_t count = ::write(descriptor, contents.data(), contents.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return lastError();
    contents.remove_prefix(static_cast<std::size_t>(count));
  }
  return ::fsync(descriptor) == 0 ? std::error_code() : lastError();
}

}  // namespace

Result<TemporaryName, std::error_code> writeTemporaryFile(const std::filesystem::path& file,
                                                          std::string_view contents) {
  std::string name = (file.parent_path() / ("." + file.filename().string() + ".XXXXXX")).string();
  const UniqueFd descriptor(::mkostemp(name.data(), O_CLOEXEC));
  if (!descriptor) return tl::unexpected(lastError());
  TemporaryName temporary(name);
  if (const auto error = writeAll(descriptor.get(), contents)) return tl::unexpected(error);
  return temporary;
}

}  // namespace nimbo
