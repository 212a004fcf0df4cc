// SPDX-License-Identifier: MIT
#include "platform/linux/update/debian/downloads_folder.h"

#include <optional>
#include <string>

#include "base/text.h"

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

}  // namespace nimbo
