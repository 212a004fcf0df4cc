// SPDX-License-Identifier: MIT
#include "app/windows/dashboard.h"

#include <string_view>
#include <utility>

#include "usage/usage_status.h"

namespace nimbo {

Dashboard::Dashboard(Services services, const DashboardSources& sources, Callbacks callbacks)
    : services_(services), sources_(sources), callbacks_(std::move(callbacks)) {}

bool Dashboard::open(const std::shared_ptr<StatusItem>& item, std::optional<Rect> reported,
                     std::optional<DashboardTab> tab) {
  if (!prepare(tab)) return false;
  parts_->panel.show(item, reported);
  callbacks_.tabShown(parts_->controller.selectedTab());
  return true;
}

bool Dashboard::loadOffscreen(DashboardTab tab) {
  offscreen_ = prepare(tab);
  return offscreen_;
}

bool Dashboard::prepare(std::optional<DashboardTab> tab) {
  if (!parts_ && !create()) return false;
  parts_->controller.setActivityMonitorEnabled(services_.workspace.hasSystemMonitor());
  parts_->controller.open(tab);
  return true;
}

bool Dashboard::create() {
  auto* const interface = services_.toolkit.interface();
  if (interface == nullptr) return false;
  parts_ = std::make_unique<Parts>(sources_, *interface, services_.mainLoop);
  auto& [controller, window, panel] = *parts_;
  controller.onContentChanged = [this] {
    parts_->window->render(parts_->controller.content());
    parts_->panel.setContentSize(parts_->controller.content().size);
  };
  controller.awakeView().onSettingsChanged = callbacks_.settingsChanged;
  panel.statusButtons = callbacks_.statusItemFrames;
  window->setListener([this](const ControlEvent& event) { handle(event); });
  return true;
}

void Dashboard::handle(const ControlEvent& event) {
  const std::string_view identifier = event.identifier;
  if (identifier == "settings") return callbacks_.openSettings();
  if (identifier == "quit") return callbacks_.quit();
  if (identifier == "activity") (void)services_.workspace.openSystemMonitor();
  if (identifier == "refresh") return callbacks_.refreshUsage();
  if (identifier == "configure" || identifier.starts_with("connect.")) return callbacks_.configureUsage();
  for (const auto provider : kAllUsageProviders) {
    if (identifier == linkIdentifier(provider)) services_.workspace.openLink(usagePage(provider));
  }
  parts_->controller.handle(event);
  if (identifier == "tabs") callbacks_.tabShown(parts_->controller.selectedTab());
}

void Dashboard::close() {
  if (parts_) parts_->panel.close();
}

bool Dashboard::wantsProcesses() const {
  return parts_ && (offscreen_ || visible()) && parts_->controller.selectedTab() == DashboardTab::memory;
}

bool Dashboard::justClosedBy(const StatusItem& item) const { return parts_ && parts_->panel.justClosedBy(item); }

void Dashboard::update() {
  if (visible()) parts_->controller.show();
}

void Dashboard::updateProcesses(ProcessScan scan) {
  if (offscreen_ || visible()) parts_->controller.showProcesses(std::move(scan));
}

}  // namespace nimbo
