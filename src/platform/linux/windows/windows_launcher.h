// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <list>
#include <memory>
#include <optional>

#include "platform/main_loop.h"
#include "platform/posix/files/unique_fd.h"
#include "platform/windows_process.h"

namespace nimbo {

/// The program's exit status when it can reach no display.
inline constexpr int kNoDisplay = 3;
/// When there is only Wayland, and the toolkit's part for it is missing.
inline constexpr int kNoWaylandPlugin = 4;

/// Starts the program that shows the windows, with its end of the channel as standard input and DisplayNeed's word as
/// the argument. Main thread only.
class WindowsLauncher {
 public:
  /// The executable is opened now, so that an upgrade does not put another version in its place. `loop` outlives this.
  WindowsLauncher(MainLoop& loop, const std::filesystem::path& executable);
  ~WindowsLauncher();
  WindowsLauncher(const WindowsLauncher&) = delete;
  WindowsLauncher& operator=(const WindowsLauncher&) = delete;

  /// See WindowsStarter. What it returns must not outlive this.
  [[nodiscard]] std::unique_ptr<WindowsProcess> start(DisplayNeed need, WindowsProcess::Events events);

  /// Of the process that was started last, while it runs.
  [[nodiscard]] std::optional<pid_t> process() const { return process_; }

 private:
  class Child;
  struct Ending;

  void letGo(UniqueFd process);

  MainLoop& loop_;
  const UniqueFd executable_;
  std::optional<pid_t> process_;
  std::list<Ending> endings_;  ///< children that were let go of and have not ended yet
};

}  // namespace nimbo
