// SPDX-License-Identifier: MIT
#include "app/windows/settings_window_opener.h"

#include <utility>

namespace nimbo {

SettingsWindowOpener::SettingsWindowOpener(Services services, Callbacks callbacks)
    : services_(services), callbacks_(std::move(callbacks)) {}

void SettingsWindowOpener::open(std::optional<SettingsPage> page) {
  auto* const interface = services_.toolkit.interface();
  if (interface == nullptr) return;
  if (!controller_) {
    window_ = interface->makeSettingsWindow();
    controller_ = std::make_unique<SettingsWindowController>(services_.settings, *window_, services_.bundle,
                                                             [this] { return services_.loginItem.status(); });
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
