// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "platform/linux/display/x11_screen.h"
#include "platform/module_loader.h"

namespace nimbo {

/// Makes the screen from the module "nimbo-x11", which is loaded when it is first asked for.
/// `display` is the value of DISPLAY in an X11 session and empty in any other. `loader` outlives it.
[[nodiscard]] X11ScreenMaker x11ScreenFromModule(ModuleLoader& loader, std::string display);

}  // namespace nimbo
