// SPDX-License-Identifier: MIT
#include "platform/linux/display/display_modules.h"
#include "platform/linux/display/wayland/wayland_display.h"

extern "C" __attribute__((visibility("default"))) nimbo::DisplayPower* nimboMakeWaylandDisplay(
    nimbo::MainLoop& loop, const std::string& socket) {
  static_assert(std::is_same_v<decltype(&nimboMakeWaylandDisplay), nimbo::WaylandDisplayEntry>);
  return new nimbo::WaylandDisplay(loop, socket);
}
