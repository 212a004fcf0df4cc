// SPDX-License-Identifier: MIT
#include "ui/settings/settings_window_controller.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "ui/settings/settings_pages.h"

namespace nimbo {
namespace {

/// A control that stands for no stored setting: its owner knows what to do.
struct Request {
  std::string_view identifier;
  std::function<void()> SettingsWindowController::*callback;
};
constexpr std::array kRequests{
    Request{"login", &SettingsWindowController::onLogin},
    Request{"updates", &SettingsWindowController::onToggleAutomaticUpdates},
    Request{"checkUpdates", &SettingsWindowController::onCheckUpdates},
    Request{"enableClaudeDesktop", &SettingsWindowController::onEnableClaudeDesktop},
};

}  // namespace

SettingsWindowController::SettingsWindowController(Settings& settings, SettingsWindow& window, const BundleInfo& bundle,
                                                   LoginStatusSource loginStatus)
    : settings_(settings), window_(window), bundle_(bundle), loginStatus_(std::move(loginStatus)) {
  window_.setActions({
      [this](std::size_t index) { tabChanged(index); },
      [this](const std::string& identifier, bool on) { changed(identifier, on); },
      [this](const std::string& identifier, std::size_t index) { choiceChanged(identifier, index); },
      [this](const std::string& identifier) { pressed(identifier); },
      [this] { windowDidBecomeKey(); },
  });
}

SettingsWindowController::~SettingsWindowController() { window_.setActions({}); }

void SettingsWindowController::show() {
  sync();
  window_.show();
}

void SettingsWindowController::close() { window_.close(); }

void SettingsWindowController::sync() {
  window_.render(
      settingsWindowContent({settings_, loginStatus_(), automaticUpdates_, bundle_, widgetMessage_}, selectedPage_));
}

void SettingsWindowController::syncIfVisible() {
  if (visible()) sync();
}

void SettingsWindowController::setAutomaticUpdates(bool on) {
  automaticUpdates_ = on;
  syncIfVisible();
}

void SettingsWindowController::setWidgetMessage(std::optional<std::string> message) {
  widgetMessage_ = std::move(message);
  syncIfVisible();
}

void SettingsWindowController::tabChanged(std::size_t index) {
  if (index < kSettingsPageCount) selectedPage_ = index;
  sync();
}

void SettingsWindowController::changed(const std::string& identifier, bool on) {
  if (const auto* const check = settingsCheck(identifier)) {
    write(*check, on);
  } else {
    askOwner(identifier);
  }
  sync();
}

void SettingsWindowController::choiceChanged(const std::string& identifier, std::size_t index) {
  if (const auto* const choice = settingsChoice(identifier)) write(*choice, index);
  sync();
}

void SettingsWindowController::pressed(const std::string& identifier) {
  askOwner(identifier);
  sync();
}

void SettingsWindowController::askOwner(const std::string& identifier) const {
  const auto request = std::ranges::find(kRequests, identifier, &Request::identifier);
  if (request == kRequests.end()) return;
  if (const auto& callback = this->*request->callback) callback();
}

void SettingsWindowController::write(const SettingsCheck& check, bool on) {
  check.write(settings_, on);
  if (check.also != nullptr) check.also(settings_, on);
  report({check.change, check.change == Change::Kind::display && on});
}

void SettingsWindowController::write(const SettingsChoice& choice, std::size_t index) {
  if (index >= choice.items.size()) return;
  choice.write(settings_, choice.items[index].tag);
  report({choice.change});
}

void SettingsWindowController::report(const Change& change) const {
  if (onChange) onChange(change);
}

}  // namespace nimbo
