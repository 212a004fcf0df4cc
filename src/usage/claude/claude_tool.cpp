// SPDX-License-Identifier: MIT
#include "usage/claude/claude_tool.h"

#include <algorithm>
#include <array>

#include "base/text.h"

namespace nimbo::claude_tool {
namespace {

namespace fs = std::filesystem;

constexpr std::array<std::string_view, 7> kReplacedOrRemoved{
    "ANTHROPIC_API_KEY", "ANTHROPIC_AUTH_TOKEN", "ANTHROPIC_BASE_URL", "CLAUDE_CODE_OAUTH_TOKEN", "CLAUDECODE", "TERM",
    "NO_COLOR"};

bool isReplacedOrRemoved(std::string_view entry) {
  return std::ranges::find(kReplacedOrRemoved, entry.substr(0, entry.find('='))) != kReplacedOrRemoved.end();
}

std::vector<fs::path> candidates(const fs::path& home, std::string_view searchPath) {
  std::vector<fs::path> result{home / ".local/bin/claude", "/opt/homebrew/bin/claude", "/usr/local/bin/claude"};
  while (!searchPath.empty()) {
    const std::string_view folder = takeUntil(searchPath, ':');
    if (folder.starts_with('/')) result.push_back(fs::path(folder) / "claude");
  }
  return result;
}

}  // namespace

std::optional<fs::path> findExecutable(const fs::path& home, std::string_view searchPath, const ToolFiles& files) {
  for (fs::path& file : candidates(home, searchPath)) {
    if (files.isExecutable(file)) return std::move(file);
  }
  return std::nullopt;
}

fs::path workspace(const fs::path& caches) { return caches / "com.quellwerk.Nimbo/ClaudeUsage"; }

std::vector<std::string> arguments() { return {"--safe-mode", "--tools", "", "--ax-screen-reader", "/usage"}; }

std::vector<std::string> environment(const std::vector<std::string>& inherited) {
  std::vector<std::string> result;
  std::ranges::remove_copy_if(inherited, std::back_inserter(result), isReplacedOrRemoved);
  result.insert(result.end(), {"TERM=xterm-256color", "NO_COLOR=1"});
  return result;
}

}  // namespace nimbo::claude_tool
