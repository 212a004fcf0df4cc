// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

#include "platform/linux/desktop/desktop_application.h"

namespace nimbo {

enum class ProcessShows { windows, perhapsNothing };

/// Looks at the executable behind a process, at the program that Electron runs and at the
/// application of a Flatpak: things that neither a web page nor a window's title can imitate.
/// `root` is that of procfs.
[[nodiscard]] bool isProcessOf(const ApplicationMarks& application, const std::string& root, std::int64_t pid,
                               ProcessShows shows);

/// Whether any process that may be looked at is the application.
[[nodiscard]] bool isRunning(const ApplicationMarks& application, const std::string& root);

}  // namespace nimbo
