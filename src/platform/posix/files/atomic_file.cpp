// SPDX-License-Identifier: MIT
#include "platform/posix/files/atomic_file.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>

#include "platform/posix/files/unique_fd.h"

namespace nimbo {
namespace {

namespace fs = std::filesystem;

// By hand because the standard library's canonical forms want the end of the chain to exist.
Result<fs::path, std::error_code> followLinks(fs::path file) {
  constexpr int kMaximumLinks = 40;  // the kernel's own limit
  for (int links = 0; links <= kMaximumLinks; ++links) {
    std::error_code error;
    const fs::path next = fs::read_symlink(file, error);
    if (error == std::errc::invalid_argument || error == std::errc::no_such_file_or_directory) return file;
    if (error) return tl::unexpected(error);
    file = file.parent_path() / next;
  }
  return tl::unexpected(std::make_error_code(std::errc::too_many_symbolic_link_levels));
}

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

std::error_code makePrivateFolders(const fs::path& folder) {
  if (::mkdir(folder.c_str(), S_IRWXU) == 0 || errno == EEXIST) return {};
  if (errno != ENOENT || folder == folder.parent_path()) return lastError();
  if (const auto error = makePrivateFolders(folder.parent_path())) return error;
  return ::mkdir(folder.c_str(), S_IRWXU) == 0 || errno == EEXIST ? std::error_code() : lastError();
}

Result<TemporaryName, std::error_code> writeTemporaryFile(const fs::path& file, std::string_view contents) {
  std::string name = (file.parent_path() / ("." + file.filename().string() + ".XXXXXX")).string();
  const UniqueFd descriptor(::mkostemp(name.data(), O_CLOEXEC));
  if (!descriptor) return tl::unexpected(lastError());
  TemporaryName temporary(name);
  if (const auto error = writeAll(descriptor.get(), contents)) return tl::unexpected(error);
  return temporary;
}

Result<AtomicFile, std::error_code> AtomicFile::prepare(const fs::path& file, std::string_view contents, Links links) {
  std::error_code error;
  const fs::path absolute = fs::absolute(file, error);
  if (error) return tl::unexpected(error);
  const auto target = links == Links::follow ? followLinks(absolute) : Result<fs::path, std::error_code>(absolute);
  if (!target) return tl::unexpected(target.error());
  struct stat status {};
  if (::lstat(target->c_str(), &status) == 0 && !S_ISREG(status.st_mode)) {
    return tl::unexpected(std::make_error_code(std::errc::not_supported));
  }
  error = makePrivateFolders(target->parent_path());
  if (error) return tl::unexpected(error);

  auto temporary = writeTemporaryFile(*target, contents);
  if (!temporary) return tl::unexpected(temporary.error());
  return AtomicFile(*target, std::move(*temporary));
}

std::error_code AtomicFile::commit() {
  if (std::rename(temporary_.get().c_str(), target_.c_str()) != 0) return lastError();
  (void)temporary_.detach();
  // A power cut is not to bring the old version back. It may where this fails, but the new one is in place.
  const UniqueFd folder(::open(target_.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (folder) ::fsync(folder.get());
  return {};
}

std::error_code writeFileAtomically(const fs::path& file, std::string_view contents, AtomicFile::Links links) {
  auto prepared = AtomicFile::prepare(file, contents, links);
  return prepared ? prepared->commit() : prepared.error();
}

}  // namespace nimbo
