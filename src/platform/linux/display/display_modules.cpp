// SPDX-License-Identifier: MIT
#include "platform/linux/display/display_modules.h"

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

WaylandDisplayMaker waylandDisplayFromModule(ModuleLoader& loader, MainLoop& loop, std::string socket) {
  return [&loader, &loop, socket = std::move(socket)]() -> std::unique_ptr<DisplayPower> {
    if (socket.empty()) return nullptr;
    const auto symbol = loader.symbol("nimbo-wayland", kWaylandDisplayEntryName);
    if (!symbol) return nullptr;
    return std::unique_ptr<DisplayPower>(reinterpret_cast<WaylandDisplayEntry>(*symbol)(loop, socket));
  };
}

}  // namespace nimbo
