// SPDX-License-Identifier: MIT
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace nimbo {

/// What a /proc/PID/stat says of a process's place; absent for other text.
struct ProcessPlace {
  bool zombie = false;
  pid_t session = 0;
  bool operator==(const ProcessPlace&) const = default;
};
[[nodiscard]] std::optional<ProcessPlace> parseProcessPlace(std::string_view text);

/// Kills every process of the session that `leader` led and, for a short while, waits until they are
/// gone. `leader` has ended and is not reaped yet.
void killSessionMembers(const std::filesystem::path& procRoot, pid_t leader);

/// The same for the processes, of whatever session, that have the file `path` open.
void killHolders(const std::filesystem::path& procRoot, const std::string& path);

}  // namespace nimbo
