// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <string>

namespace nimbo {

enum class DisplayNeed {
  required,  ///< a user is to see the windows
  optional,  ///< without a display the windows exist in memory only
};

/// Why the process of the windows is gone.
enum class WindowsEnd {
  died,             ///< a fault, a signal, or the end of its display
  noDisplay,        ///< there is none that it can reach
  noWaylandPlugin,  ///< there is only Wayland, and the toolkit's part for it is missing
  cannotRun,        ///< its program or the toolkit is missing, or is another version's
};

/// A process that shows the program's windows, at the other end of a channel that keeps records whole and in order.
/// Destroying it ends the process, without another call to its owner. Main thread only.
class WindowsProcess {
 public:
  struct Events {
    std::function<void(const std::string& record)> received;
    /// Once, after all that it had sent; not from within `start` or `send`. May destroy this object.
    std::function<void(WindowsEnd end)> ended;
  };

  virtual ~WindowsProcess() = default;

  /// Never waits; the process reads the record when it can, also one that is sent while it starts. False when the
  /// channel has no room for it, because the process has not read for long.
  [[nodiscard]] virtual bool send(const std::string& record) = 0;
};

/// Never null. A process that cannot be started ends as `cannotRun`.
using WindowsStarter = std::function<std::unique_ptr<WindowsProcess>(DisplayNeed need, WindowsProcess::Events events)>;

}  // namespace nimbo
