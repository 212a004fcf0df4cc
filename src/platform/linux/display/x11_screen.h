// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>

namespace nimbo {

/// The display as an X server has it. Each call waits for the server, but never long. Main thread
/// only.
class X11Screen {
 public:
  virtual ~X11Screen() = default;

  /// Lets everybody's idle time begin again, as if there had been input. False when the server did
  /// not do it.
  [[nodiscard]] virtual bool resetScreenSaver() = 0;

  /// Turns the display off until the next input. False when the server did not do it.
  [[nodiscard]] virtual bool turnOff() = 0;
};

/// Null outside X11 sessions, and when that part of the program is not installed.
using X11ScreenMaker = std::function<std::unique_ptr<X11Screen>()>;

}  // namespace nimbo
