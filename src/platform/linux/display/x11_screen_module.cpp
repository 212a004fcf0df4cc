// SPDX-License-Identifier: MIT
#include "platform/linux/display/x11_screen_module.h"

#include <utility>

namespace nimbo {

X11ScreenMaker x11ScreenFromModule(ModuleLoader& loader, std::string display) {
  return [&loader, display = std::move(display)]() -> std::unique_ptr<X11Screen> {
    if (display.empty()) return nullptr;
    const auto symbol = loader.symbol("nimbo-x11", kX11ScreenEntryName);
    if (!symbol) return nullptr;
    return std::unique_ptr<X11Screen>(reinterpret_cast<X11ScreenEntry>(*symbol)(display));
  };
}

}  // namespace nimbo
