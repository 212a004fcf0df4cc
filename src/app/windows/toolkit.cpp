// SPDX-License-Identifier: MIT
#include "app/windows/toolkit.h"

#include <utility>

namespace nimbo {

Toolkit::Toolkit(MainLoop& mainLoop, Workspace& workspace, UserInterfaceMaker makeUserInterface, MainMenu mainMenu)
    : mainLoop_(mainLoop),
      workspace_(workspace),
      makeUserInterface_(std::move(makeUserInterface)),
      mainMenu_(std::move(mainMenu)) {}

UserInterface* Toolkit::interface() {
  if (interface_) return interface_.get();
  interface_ = makeUserInterface_();
  if (!interface_) return nullptr;
  mainLoop_.adopt(interface_->loop());
  interface_->setMainMenu(mainMenu_);
  interface_->setAppearance(workspace_.appearance());
  appearance_ = workspace_.observeAppearance([this](Appearance appearance) { interface_->setAppearance(appearance); });
  return interface_.get();
}

}  // namespace nimbo
