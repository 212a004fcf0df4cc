// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace nimbo {

/// Whether `name` is one of the desktops in the value of XDG_CURRENT_DESKTOP ("ubuntu:GNOME").
/// Letter case does not matter.
[[nodiscard]] bool desktopIs(std::string_view currentDesktop, std::string_view name);

}  // namespace nimbo
