// SPDX-License-Identifier: MIT
#include "app/windows/settings_window_opener.h"

#include <utility>

namespace nimbo {

SettingsWindowOpener::SettingsWindowOpener(PlatformServices& platform, Toolkit& toolkit, Settings& settings,
                                           Callbacks callbacks)
    : platform_(platform), toolkit_(toolkit), settings_(settings), callbacks_(std::move(callbacks)) {}

void SettingsWindowOpener::open(std::optional<SettingsTab> tab) {
  auto* const interface = toolkit_.interface();
  if (interface == nullptr) return;
  if (!controller_) {
    window_ = interface->makeSettingsWindow();
    controller_ = std::make_unique<SettingsWindowController>(
        SettingsWindowController::Sources{settings_, platform_.bundleInfo(), platform_.loginItem()}, *window_,
        callbacks_);
  }
  controller_->show(tab);
}

void SettingsWindowOpener::update() {
  if (controller_) controller_->syncIfVisible();
}

}  // namespace nimbo
