// SPDX-License-Identifier: MIT
#include "platform/posix/terminal/local_tool_files.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <string_view>

#include "platform/posix/files/atomic_file.h"
#include "platform/posix/files/regular_file.h"
#include "platform/posix/files/unique_fd.h"

namespace nimbo {
namespace {

namespace fs = std::filesystem;

using State = PrivateFolder::State;

bool isLink(const fs::path& path) {
  struct stat status {};
  return ::lstat(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode);
}

// With a slash at its end a name is followed even when links are not.
fs::path withoutTrailingSlash(const fs::path& folder) {
  return folder.has_filename() || !folder.has_relative_path() ? folder : folder.parent_path();
}

Result<State, std::error_code> stateOf(const UniqueFd& folder) {
  UniqueFd listed(::openat(folder.get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!listed) return tl::unexpected(lastError());
  const UniquePointer<DIR, ::closedir> list(::fdopendir(listed.get()));
  if (!list) return tl::unexpected(lastError());
  (void)listed.detach();  // the list closes it
  errno = 0;
  while (const dirent* entry = ::readdir(list.get())) {
    const std::string_view name = entry->d_name;
    if (name != "." && name != "..") return State::occupied;
  }
  if (errno != 0) return tl::unexpected(lastError());
  return State::empty;
}

// The given name stands in for one that leads elsewhere by now.
fs::path ownName(const UniqueFd& folder, const fs::path& given) {
  std::error_code error;
  fs::path name = fs::canonical(given, error);
  struct stat named {};
  struct stat opened {};
  const bool isIt = !error && ::stat(name.c_str(), &named) == 0 && ::fstat(folder.get(), &opened) == 0 &&
                    named.st_dev == opened.st_dev && named.st_ino == opened.st_ino;
  return isIt ? name : given;
}

std::error_code keepOthersOut(const UniqueFd& folder) {
  struct stat status {};
  if (::fstat(folder.get(), &status) != 0) return lastError();
  if ((status.st_mode & ALLPERMS) == S_IRWXU && status.st_uid == ::geteuid()) return {};
  return ::fchmod(folder.get(), S_IRWXU) == 0 ? std::error_code() : lastError();
}

}  // namespace

bool LocalToolFiles::isExecutable(const fs::path& file) const { return isExecutableFile(file); }

Result<PrivateFolder, std::error_code> LocalToolFiles::preparePrivateFolder(const fs::path& given) const {
  const fs::path folder = withoutTrailingSlash(given);
  if (const auto error = makePrivateFolders(folder)) return tl::unexpected(error);
  const UniqueFd opened(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  if (!opened) {
    const std::error_code error = lastError();
    if (isLink(folder)) return PrivateFolder{State::occupied, folder};
    return tl::unexpected(error);
  }
  if (const auto error = keepOthersOut(opened)) return tl::unexpected(error);
  const auto state = stateOf(opened);
  if (!state) return tl::unexpected(state.error());
  return PrivateFolder{*state, ownName(opened, folder)};
}

}  // namespace nimbo
