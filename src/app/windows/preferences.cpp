// SPDX-License-Identifier: MIT
#include "app/windows/preferences.h"

#include <utility>

namespace nimbo {

Preferences::Preferences(Services services, Callbacks callbacks)
    : services_(services), callbacks_(std::move(callbacks)) {}

bool Preferences::open(std::optional<SettingsPage> page) {
  if (!parts_ && !create()) return false;
  if (page) parts_->controller->tabChanged(static_cast<std::size_t>(*page));
  pushIn();
  parts_->controller->show();
  return true;
}

void Preferences::update() {
  if (parts_ && parts_->controller->visible()) pushIn();
}

bool Preferences::create() {
  auto* const interface = services_.toolkit.interface();
  if (interface == nullptr) return false;
  Parts parts;
  parts.window = interface->makeSettingsWindow();
  parts.controller = std::make_unique<SettingsWindowController>(services_.settings, *parts.window, services_.bundle,
                                                                [this] { return services_.loginItem.status(); });
  parts.controller->onChange = callbacks_.changed;
  parts.controller->onLogin = callbacks_.toggleLogin;
  parts.controller->onCheckUpdates = callbacks_.checkForUpdates;
  parts.controller->onToggleAutomaticUpdates = callbacks_.toggleAutomaticUpdates;
  parts.controller->onEnableClaudeDesktop = callbacks_.enableClaudeDesktop;
  parts_ = std::move(parts);
  return true;
}

void Preferences::pushIn() {
  parts_->controller->setAutomaticUpdates(callbacks_.automaticUpdates());
  parts_->controller->setWidgetMessage(callbacks_.widgetMessage());
}

}  // namespace nimbo
