// SPDX-License-Identifier: MIT
#include "platform/linux/files/private_folders.h"

#include <sys/stat.h>

#include <cerrno>

#include "platform/linux/files/last_error.h"

namespace nimbo {

std::error_code makePrivateFolders(const std::filesystem::path& folder) {
  if (::mkdir(folder.c_str(), S_IRWXU) == 0 || errno == EEXIST) return {};
  if (errno != ENOENT || folder == folder.parent_path()) return lastError();
  if (const auto error = makePrivateFolders(folder.parent_path())) return error;
  return ::mkdir(folder.c_str(), S_IRWXU) == 0 || errno == EEXIST ? std::error_code() : lastError();
}

}  // namespace nimbo
