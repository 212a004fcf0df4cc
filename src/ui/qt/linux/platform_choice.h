// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>

#include "base/result.h"
#include "platform/windows_process.h"

namespace nimbo {

/// What can be asked of the displays; each is asked only when it matters.
struct DisplayQuestions {
  std::function<bool()> x11Usable;
  std::function<bool()> waylandAnswers;
  std::function<bool()> waylandPluginLoads;
  std::function<bool()> windowsHangOnWayland;  ///< at the edges of a screen, see LayerWindowSystem
};

/// Which of the toolkit's platforms to use, or why none. In a Wayland session it is Wayland where a dashboard can hang
/// from its item there; else X11 comes first, because that needs to know the place of a window. `requested` (the
/// toolkit's QT_QPA_PLATFORM) counts when it names neither, such as a remote or an invisible display, and when it puts
/// X11 first.
[[nodiscard]] Result<std::string, WindowsEnd> choosePlatform(const std::string& requested, const DisplayQuestions& ask);

/// Whether the X server named by DISPLAY lets this process in.
[[nodiscard]] bool x11Answers();

/// Whether the socket named by WAYLAND_DISPLAY accepts connections.
[[nodiscard]] bool waylandAnswers();

}  // namespace nimbo
