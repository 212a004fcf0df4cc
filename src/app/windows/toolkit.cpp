// SPDX-License-Identifier: MIT
#include "app/windows/toolkit.h"

#include <fmt/format.h>

#include <cstdio>
#include <string>
#include <utility>

namespace nimbo {

UserInterfaceMaker userInterfaceFromModule(ModuleLoader& loader, DisplayNeed need) {
  return [&loader, need, said = std::string()]() mutable -> std::unique_ptr<UserInterface> {
    // The same trouble only once: the user may click again and again.
    const auto complain = [&said](const std::string& text) {
      if (std::exchange(said, text) != text) fmt::print(stderr, "nimbo: {}\n", text);
    };
    const auto symbol = loader.symbol("nimbo-ui", kUserInterfaceEntryName);
    if (!symbol) {
      complain("the windows cannot be loaded: " + symbol.error().message);
      return nullptr;
    }
    std::unique_ptr<UserInterface> interface(reinterpret_cast<UserInterfaceEntry>(*symbol)(need));
    if (!interface) complain("no display can be reached, so no window can be shown");
    return interface;
  };
}

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

bool Toolkit::showAlert(std::unique_ptr<Alert>& alert, const AlertContent& content,
                        std::function<void(std::size_t button)> answered) {
  if (interface() == nullptr) return false;
  alert = interface_->showAlert(content, [&alert, answered = std::move(answered)](std::size_t button) {
    const auto answer = answered;  // goes with the alert
    alert.reset();
    answer(button);
  });
  return true;
}

}  // namespace nimbo
