// SPDX-License-Identifier: MIT
#include "ui/settings/settings_window_controller.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace nimbo {
namespace {

using Callbacks = SettingsWindowController::Callbacks;

/// A control that stands for no stored setting; the owner does what it asks for.
struct Request {
  std::string_view identifier;
  std::function<void()> Callbacks::*callback;
};
constexpr std::array kRequests{
    Request{"login", &Callbacks::toggleLogin},
    Request{"updates", &Callbacks::toggleAutomaticUpdates},
    Request{"checkUpdates", &Callbacks::checkForUpdates},
    Request{"enableClaudeDesktop", &Callbacks::enableClaudeDesktop},
};

}  // namespace

SettingsWindowActions SettingsWindowController::actions() {
  return {
      .selectTab = [this](std::size_t index) { tabChanged(index); },
      .check = [this](const std::string& identifier, bool on) { checkChanged(identifier, on); },
      .choose = [this](const std::string& identifier, std::size_t index) { choiceChanged(identifier, index); },
      .press = [this](const std::string& identifier) { pressed(identifier); },
      .becameKey = [this] { sync(); },
  };
}

void SettingsWindowController::show(std::optional<SettingsTab> tab) {
  if (!window_) {
    window_ = callbacks_.makeWindow();
    if (!window_) return;
    window_->setActions(actions());
  }
  if (tab) selectedTab_ = static_cast<std::size_t>(*tab);
  sync();
  window_->show();
}

void SettingsWindowController::sync() {
  const SettingsFacts facts{.settings = sources_.settings,
                            .bundle = sources_.bundle,
                            .loginStatus = sources_.loginItem.status(),
                            .automaticUpdates = callbacks_.automaticUpdates(),
                            .widgetMessage = callbacks_.widgetMessage()};
  window_->render(settingsWindowContent(facts, selectedTab_));
}

void SettingsWindowController::syncIfVisible() {
  if (window_ && window_->visible()) sync();
}

void SettingsWindowController::tabChanged(std::size_t index) {
  if (index < kSettingsTabCount) selectedTab_ = index;
  sync();
}

void SettingsWindowController::checkChanged(const std::string& identifier, bool on) {
  if (const auto* const check = settingsCheck(identifier)) {
    check->write(sources_.settings, on);
    callbacks_.changed({check->change, check->change == SettingsChange::Kind::display && on});
  } else {
    askOwner(identifier);
  }
  sync();
}

void SettingsWindowController::choiceChanged(const std::string& identifier, std::size_t index) {
  const auto* const choice = settingsChoice(identifier);
  if (choice != nullptr && index < choice->items.size()) {
    choice->write(sources_.settings, choice->items[index].tag);
    callbacks_.changed({choice->change});
  }
  sync();
}

void SettingsWindowController::pressed(const std::string& identifier) {
  askOwner(identifier);
  sync();
}

void SettingsWindowController::askOwner(const std::string& identifier) const {
  const auto request = std::ranges::find(kRequests, identifier, &Request::identifier);
  if (request != kRequests.end()) (callbacks_.*request->callback)();
}

}  // namespace nimbo
