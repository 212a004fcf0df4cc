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

void SettingsWindowController::show(std::optional<SettingsTab> tab) {
  if (!window_) {
    window_ = callbacks_.makeWindow();
    window_->setEvents(
        {.acted = [this](const ControlEvent& event) { handle(event); }, .becameKey = [this] { sync(); }});
  }
  if (tab) selectedTab_ = static_cast<std::size_t>(*tab);
  sync();
  window_->show({});
}

void SettingsWindowController::sync() {
  const SettingsFacts facts{.settings = sources_.settings,
                            .bundle = sources_.bundle,
                            .wording = sources_.wording,
                            .loginStatus = sources_.loginItem.status(),
                            .automaticUpdates = callbacks_.automaticUpdates(),
                            .manualSleepApplies = callbacks_.manualSleepApplies(),
                            .widgetMessage = callbacks_.widgetMessage()};
  window_->render(settingsWindowContent(facts, selectedTab_));
}

void SettingsWindowController::syncIfVisible() {
  if (window_ && window_->visible()) sync();
}

void SettingsWindowController::handle(const ControlEvent& event) {
  const auto& [identifier, value] = event;
  const auto* const on = std::get_if<bool>(&value);
  const auto* const index = std::get_if<std::size_t>(&value);
  const auto* const check = settingsCheck(identifier);
  const auto* const choice = settingsChoice(identifier);
  if (identifier == kTabsIdentifier && index != nullptr && *index < kSettingsTabCount) {
    selectedTab_ = *index;
  } else if (check != nullptr && on != nullptr) {
    check->write(sources_.settings, *on);
    callbacks_.changed({check->change, check->change == SettingsChange::Kind::display && *on});
  } else if (choice != nullptr && index != nullptr && *index < choice->items.size()) {
    choice->write(sources_.settings, choice->items[*index].tag);
    callbacks_.changed({choice->change});
  } else {
    const auto request = std::ranges::find(kRequests, identifier, &Request::identifier);
    if (request != kRequests.end()) (callbacks_.*request->callback)();
  }
  sync();
}

}  // namespace nimbo
