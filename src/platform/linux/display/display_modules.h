// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include "platform/bundle.h"
#include "platform/display_power.h"
#include "platform/main_loop.h"

namespace nimbo {

/// How long there is to be no input before the display is turned off: letting go of the key or the button that asked
/// for it must not turn it on again.
inline constexpr std::chrono::milliseconds kPauseBeforeOff{700};

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

/// The one function that the module "nimbo-x11" exports. `display` has the form of DISPLAY.
using X11ScreenEntry = X11Screen* (*)(const std::string& display);
inline constexpr const char* kX11ScreenEntryName = "nimboMakeX11Screen";

/// The one function that the module "nimbo-wayland" exports. `socket` is the compositor's, as a whole path.
using WaylandDisplayEntry = DisplayPower* (*)(MainLoop& loop, const std::string& socket);
inline constexpr const char* kWaylandDisplayEntryName = "nimboMakeWaylandDisplay";

// Null outside sessions of their kind, and when that part of the program is not installed.
using X11ScreenMaker = std::function<std::unique_ptr<X11Screen>()>;
using WaylandDisplayMaker = std::function<std::unique_ptr<DisplayPower>()>;

// Both load their module when they are first called. An empty address says that this is no such session. What is
// passed by reference outlives them.
[[nodiscard]] X11ScreenMaker x11ScreenFromModule(ModuleLoader& loader, std::string display);
[[nodiscard]] WaylandDisplayMaker waylandDisplayFromModule(ModuleLoader& loader, MainLoop& loop, std::string socket);

}  // namespace nimbo
