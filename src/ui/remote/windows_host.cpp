// SPDX-License-Identifier: MIT
#include "ui/remote/windows_host.h"

#include <utility>

namespace nimbo {

WindowsHost::WindowsHost(UserInterface& interface, std::function<void(const std::string& record)> send)
    : interface_(interface), send_(std::move(send)) {
  interface_.setMainMenu(toldMenu());
  tell(WindowsReady{kRecordVersion});
}

bool WindowsHost::receive(std::string_view text) {
  const auto record = decodeForWindows(text);
  if (record) std::visit([this](const auto& each) { show(each); }, *record);
  return record.has_value();
}

MainMenu WindowsHost::toldMenu() {
  MainMenu menu = makeMainMenu({});
  for (std::size_t section = 0; section < menu.sections.size(); ++section) {
    auto& entries = menu.sections[section].entries;
    for (std::size_t entry = 0; entry < entries.size(); ++entry) {
      if (entries[entry].role != MenuRole::none) continue;
      entries[entry].action = [this, section, entry] { tell(MenuEntryChosen{section, entry}); };
    }
  }
  return menu;
}

void WindowsHost::makeDashboard() {
  if (dashboard_) return;
  dashboard_ = interface_.makeDashboardWindow();
  dashboard_->setEvents(
      {.acted =
           [this](const ControlEvent& event) {
             tell(DashboardActed{{++dashboardActions_, event, wording(dashboardContent_, event).value_or("")}});
           },
       .closed =
           [this](ClosedBy by) {
             tell(DashboardClosed{dashboardSerial_, by});
           }});
}

void WindowsHost::makeSettings() {
  if (settings_) return;
  settings_ = interface_.makeSettingsWindow();
  settings_->setEvents(
      {.acted =
           [this](const ControlEvent& event) {
             tell(SettingsActed{{++settingsActions_, event, wording(settingsContent_, event).value_or("")}});
           },
       .becameKey = [this] { tell(SettingsBecameKey{}); },
       .closed = [this] { tell(SettingsClosed{settingsSerial_}); }});
}

void WindowsHost::show(const SetAppearance& record) { interface_.setAppearance(record.appearance); }

void WindowsHost::show(const ShowDashboard& record) {
  if (record.handled != dashboardActions_) return;
  makeDashboard();
  dashboardContent_ = record.content;
  dashboard_->render(dashboardContent_);
}

void WindowsHost::show(const OpenDashboard& record) {
  makeDashboard();
  dashboardSerial_ = record.serial;
  dashboard_->show(record.place);
  if (!dashboard_->visible()) tell(DashboardClosed{record.serial, ClosedBy::user});
}

void WindowsHost::show(const CloseDashboard& /*record*/) {
  if (dashboard_) dashboard_->hide();
}

void WindowsHost::show(const ShowSettings& record) {
  if (record.handled != settingsActions_) return;
  makeSettings();
  settingsContent_ = record.content;
  settings_->render(settingsContent_);
}

void WindowsHost::show(const OpenSettings& record) {
  makeSettings();
  settingsSerial_ = record.serial;
  settings_->show();
}

void WindowsHost::show(const CloseSettings& /*record*/) {
  if (settings_) settings_->close();
}

void WindowsHost::show(const OpenAlert& record) {
  alerts_[record.serial] =
      interface_.showAlert(record.content, [this, serial = record.serial](std::optional<std::size_t> button) {
        tell(AlertAnswered{serial, button});
        alerts_.erase(serial);
      });
}

void WindowsHost::show(const PresentAlert& record) {
  const auto alert = alerts_.find(record.serial);
  if (alert != alerts_.end()) alert->second->present();
}

void WindowsHost::show(const CloseAlert& record) { alerts_.erase(record.serial); }

}  // namespace nimbo
