// SPDX-License-Identifier: MIT
#include "ui/remote/windows_host.h"

#include <utility>

namespace nimbo {

WindowsHost::WindowsHost(UserInterface& interface, std::function<void(const std::string& record)> send)
    : interface_(interface), send_(std::move(send)) {
  interface_.setMenuListener([this](MenuRole chosen) { tell(MenuChosen{chosen}); });
  tell(WindowsReady{kRecordVersion});
}

bool WindowsHost::receive(std::string_view text) {
  const auto record = decodeForWindows(text);
  if (record) std::visit([this](const auto& each) { receive(each); }, *record);
  return record.has_value();
}

auto& WindowsHost::windowOf(auto& hosted) {
  if (hosted.window) return *hosted.window;
  hosted.window = (interface_.*hosted.make)();
  hosted.window->setEvents(
      {.acted =
           [this, &hosted](const ControlEvent& event) {
             tell(Acted{hosted.name, ++hosted.actions, event, wording(hosted.content, event).value_or("")});
           },
       .becameKey = [this, &hosted] { tell(BecameKey{hosted.name}); },
       .closed =
           [this, &hosted](ClosedBy by) {
             tell(Closed{hosted.name, hosted.serial, by});
           }});
  return *hosted.window;
}

void WindowsHost::showContent(auto& hosted, const auto& record) {
  if (record.handled != hosted.actions) return;
  hosted.content = record.content;
  windowOf(hosted).render(hosted.content);
}

void WindowsHost::open(auto& hosted, const Open& record) {
  hosted.serial = record.serial;
  auto& window = windowOf(hosted);
  window.show(record.place);
  if (!window.visible()) tell(Closed{hosted.name, hosted.serial, ClosedBy::other});
}

void WindowsHost::receive(const Open& record) {
  if (record.window == WindowName::dashboard) return open(dashboard_, record);
  open(settings_, record);
}

void WindowsHost::receive(const Close& record) {
  if (record.window == WindowName::dashboard && dashboard_.window) dashboard_.window->hide();
  if (record.window == WindowName::settings && settings_.window) settings_.window->hide();
}

void WindowsHost::receive(const OpenAlert& record) {
  alerts_[record.serial] =
      interface_.showAlert(record.content, [this, serial = record.serial](std::optional<std::size_t> button) {
        tell(AlertAnswered{serial, button});
        alerts_.erase(serial);
      });
}

void WindowsHost::receive(const PresentAlert& record) {
  const auto alert = alerts_.find(record.serial);
  if (alert != alerts_.end()) alert->second->present();
}

}  // namespace nimbo
