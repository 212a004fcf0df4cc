// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <optional>
#include <string>

namespace nimbo {

/// Which of the toolkit's platforms to use. X11 comes first, also in a Wayland session, because
/// only there windows can be placed. `requested` (the toolkit's QT_QPA_PLATFORM) counts when it
/// names neither X11 nor Wayland, such as a remote or an invisible display.
[[nodiscard]] std::optional<std::string> choosePlatform(const std::string& requested,
                                                        const std::function<bool()>& x11Usable,
                                                        const std::function<bool()>& waylandUsable);

/// Whether the X server named by DISPLAY lets this process in.
[[nodiscard]] bool x11Answers();

/// Whether the socket named by WAYLAND_DISPLAY accepts connections.
[[nodiscard]] bool waylandAnswers();

}  // namespace nimbo
