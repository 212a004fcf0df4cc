// SPDX-License-Identifier: MIT
#include "usage/claude/claude_usage_cli.h"

#include <utility>

#include "usage/claude/claude_screen_watch.h"
#include "usage/claude/claude_tool.h"
#include "usage/usage_messages.h"

namespace nimbo {
namespace {

namespace fs = std::filesystem;

using Kind = UsageReadError::Kind;

UsageReadError systemError(std::error_code code) { return {Kind::other, code.message()}; }

}  // namespace

ClaudeUsageCLI::ClaudeUsageCLI(const Services& services, Surroundings surroundings, const Pace& pace)
    : services_(services), surroundings_(std::move(surroundings)), pace_(pace) {}

Result<UsageSnapshot, UsageReadError> ClaudeUsageCLI::fetch(const fs::path& executable,
                                                            std::chrono::duration<double> timeout) {
  const auto terminal = services_.terminals.open(claude_tool::kTerminalSize);
  if (!terminal) return tl::unexpected(UsageReadError{Kind::usage, usage_messages::kClaudeCodeNotStarted});
  const auto folder = services_.files.preparePrivateFolder(surroundings_.workspace);
  if (!folder) return tl::unexpected(systemError(folder.error()));
  if (folder->state == PrivateFolder::State::occupied) {
    return tl::unexpected(UsageReadError{Kind::usage, usage_messages::kClaudeWorkspaceNotEmpty});
  }
  if (canceled()) return tl::unexpected(UsageReadError{Kind::cancelled});

  const auto tool = (*terminal)->start(program(executable, folder->path));
  if (!tool) return tl::unexpected(systemError(tool.error()));
  ClaudeScreenWatch watch(**tool, services_.clock,
                          {.folderNames = {surroundings_.workspace, folder->path},
                           .localZone = surroundings_.localZone,
                           .pace = pace_,
                           .canceled = [this] { return canceled(); }});
  auto snapshot = watch.run(timeout);
  (*tool)->stop(pace_.stopping);
  return snapshot;
}

ChildProgram ClaudeUsageCLI::program(const fs::path& executable, const fs::path& folder) const {
  return {.executable = executable,
          .arguments = claude_tool::arguments(),
          .environment = claude_tool::environment(surroundings_.environment),
          .folder = folder};
}

void ClaudeUsageCLI::cancel() {
  const std::lock_guard guard(lock_);
  canceled_ = true;
}

bool ClaudeUsageCLI::canceled() const {
  const std::lock_guard guard(lock_);
  return canceled_;
}

}  // namespace nimbo
