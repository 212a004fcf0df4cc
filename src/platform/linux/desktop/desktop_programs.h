// SPDX-License-Identifier: MIT
#pragma once

#include <initializer_list>
#include <list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/main_loop.h"
#include "platform/posix/files/unique_fd.h"

namespace nimbo {

/// Whether `name` is one of the desktops in `currentDesktop`, the value of XDG_CURRENT_DESKTOP ("ubuntu:GNOME"). Letter
/// case does not matter.
[[nodiscard]] bool desktopIs(std::string_view currentDesktop, std::string_view name);
[[nodiscard]] bool desktopIsAny(std::string_view currentDesktop, std::initializer_list<std::string_view> names);

/// A program that shows all processes.
struct SystemMonitor {
  std::string path;
  std::vector<std::string_view> desktopIds;  ///< of its desktop entry in one version or another
};

/// The desktop's own if it is installed, or else another one. `searchPath` as below.
[[nodiscard]] std::optional<SystemMonitor> findSystemMonitor(std::string_view currentDesktop,
                                                             const std::string& searchPath);

/// The full path of an executable file `name` in the first absolute folder of `searchPath` (in the
/// form of PATH) that has one.
[[nodiscard]] std::optional<std::string> findProgram(const std::string& name, const std::string& searchPath);

/// Starts programs that go on by themselves, in sessions of their own, and reaps them when they
/// end. Destroying it leaves them running. Main thread only.
class DetachedPrograms {
 public:
  explicit DetachedPrograms(MainLoop& loop) : loop_(loop) {}
  DetachedPrograms(const DetachedPrograms&) = delete;
  DetachedPrograms& operator=(const DetachedPrograms&) = delete;

  /// The program's whole path and its arguments. False when it could not be started, or `command` is empty.
  [[nodiscard]] bool start(const std::vector<std::string>& command);

 private:
  struct Child {
    UniqueFd process;
    Subscription ended;
  };

  MainLoop& loop_;
  std::list<Child> children_;
};

}  // namespace nimbo
