// SPDX-License-Identifier: MIT
#include "platform/linux/display/x11/xcb_screen.h"

extern "C" __attribute__((visibility("default"))) nimbo::X11Screen* nimboMakeX11Screen(const std::string& display) {
  static_assert(std::is_same_v<decltype(&nimboMakeX11Screen), nimbo::X11ScreenEntry>);
  return new nimbo::XcbScreen(display);
}
