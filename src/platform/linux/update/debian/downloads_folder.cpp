// SPDX-License-Identifier: MIT
#include "platform/linux/update/debian/downloads_folder.h"

#include <fcntl.h>
#include <stdio.h>
#include <unistd.h>

#include <cerrno>
#include <optional>

#include "base/text.h"
#include "platform/posix/files/atomic_file.h"
#include "platform/posix/files/unique_fd.h"

namespace nimbo {
namespace {

namespace fs = std::filesystem;

/// What stands between double quotes, as a shell reads it; absent without both.
std::optional<std::string> unquoted(std::string_view text) {
  if (!text.starts_with('"')) return std::nullopt;
  std::string result;
  for (std::size_t at = 1; at < text.size(); ++at) {
    if (text[at] == '"') return result;
    if (text[at] == '\\' && at + 1 < text.size()) ++at;
    result += text[at];
  }
  return std::nullopt;
}

/// The format allows a path in the home folder and a whole one, and nothing else.
std::optional<fs::path> folderOf(std::string_view value, const fs::path& home) {
  constexpr std::string_view kHome = "\"$HOME";
  const bool inHome = value.starts_with(kHome);
  const auto path = unquoted(inHome ? "\"" + std::string(value.substr(kHome.size())) : std::string(value));
  if (!path) return std::nullopt;
  if (!inHome) return path->starts_with('/') ? std::optional(fs::path(*path)) : std::nullopt;
  if (!path->empty() && path->front() != '/') return std::nullopt;
  return home / fs::path(*path).relative_path();
}

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

fs::path downloadsFolder(std::string_view userDirs, const fs::path& home) {
  constexpr std::string_view kName = "XDG_DOWNLOAD_DIR";
  std::optional<fs::path> folder;
  while (!userDirs.empty()) {
    std::string_view value = takeUntil(userDirs, '\n');
    if (trimmed(takeUntil(value, '=')) != kName) continue;
    // As in a shell, the last one counts.
    if (const auto named = folderOf(trimmed(value), home)) folder = named;
  }
  return folder.value_or(home / "Downloads");
}

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
