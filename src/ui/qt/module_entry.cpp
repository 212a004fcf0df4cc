// SPDX-License-Identifier: MIT
#include "ui/module/module_user_interface.h"
#include "ui/qt/qt_user_interface.h"

extern "C" __attribute__((visibility("default"))) nimbo::UserInterface* nimboMakeUserInterface(
    nimbo::DisplayNeed need) {
  static_assert(std::is_same_v<decltype(&nimboMakeUserInterface), nimbo::UserInterfaceEntry>);
  auto made = nimbo::QtUserInterface::make(need);
  return made ? made->release() : nullptr;
}
