// SPDX-License-Identifier: MIT
#include "platform/linux/files/plain_secret_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "base/wipe.h"
#include "platform/linux/files/last_error.h"
#include "platform/linux/files/unique_fd.h"

namespace nimbo {
namespace {

/// Fills `text` as far as the file reaches and returns how far that is.
Result<std::size_t, std::error_code> fill(std::string& text, int descriptor) {
  std::size_t filled = 0;
  while (filled < text.size()) {
    const ssize_t count = ::read(descriptor, text.data() + filled, text.size() - filled);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return tl::unexpected(lastError());
    if (count == 0) break;
    filled += static_cast<std::size_t>(count);
  }
  return filled;
}

}  // namespace

Result<std::string, std::error_code> PlainSecretFiles::read(const std::filesystem::path& file,
                                                            std::size_t maximumBytes) const {
  const UniqueFd descriptor(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
  if (!descriptor) return tl::unexpected(lastError());
  struct stat status {};
  if (::fstat(descriptor.get(), &status) != 0) return tl::unexpected(lastError());
  if (!S_ISREG(status.st_mode)) return tl::unexpected(std::make_error_code(std::errc::not_supported));
  const auto bytes = static_cast<std::size_t>(status.st_size);
  if (bytes > maximumBytes) return tl::unexpected(std::make_error_code(std::errc::file_too_large));

  // One more than there should be, to see a file that has grown meanwhile.
  std::string text(bytes + 1, '\0');
  const auto filled = fill(text, descriptor.get());
  if (filled && *filled <= bytes) {
    text.resize(*filled);
    return text;
  }
  wipe(text);
  if (!filled) return tl::unexpected(filled.error());
  return tl::unexpected(std::make_error_code(std::errc::resource_unavailable_try_again));
}

}  // namespace nimbo
