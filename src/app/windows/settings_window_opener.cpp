// SPDX-License-Identifier: MIT
#include "app/windows/settings_window_opener.h"

#include <utility>

namespace nimbo {

SettingsWindowOpener::SettingsWindowOpener(PlatformServices& platform, Toolkit& toolkit, Settings& settings,
                                           Callbacks callbacks)
    : platform_(platform), toolkit_(toolkit), settings_(settings), callbacks_(std::move(callbacks)) {}

void SettingsWindowOpener::open(std::optional<SettingsPage> page) {
  auto* const interface = toolkit_.interface();
  if (interface == nullptr) return;
  if (!controller_) {
    window_ = interface->makeSettingsWindow();
    controller_ = std::make_unique<SettingsWindowController>(settings_, *window_, platform_.bundleInfo(),
                                                             [this] { return platform_.loginItem().status(); });
    callbacks_.made(*controller_);
  }
  if (page) controller_->tabChanged(static_cast<std::size_t>(*page));
  callbacks_.update(*controller_);
  controller_->show();
}

void SettingsWindowOpener::update() {
  if (controller_ && controller_->visible()) callbacks_.update(*controller_);
}

}  // namespace nimbo
