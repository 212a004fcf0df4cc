// SPDX-License-Identifier: MIT
#include "app/windows/dashboard.h"

#include <string_view>
#include <utility>

#include "usage/usage_status.h"

namespace nimbo {
namespace {

/// How long after a press some bars report it as a click: they wait for the button's release.
constexpr std::chrono::milliseconds kClickReportLimit{300};

}  // namespace

Dashboard::Dashboard(Services services, const DashboardSources& sources, Callbacks callbacks)
    : services_(services), sources_(sources), callbacks_(std::move(callbacks)) {}

void Dashboard::open(const std::shared_ptr<StatusItem>& item, std::optional<Rect> reported,
                     std::optional<DashboardTab> tab) {
  prepare(tab);
  if (item_.lock() != item) setItemHighlighted(false);
  item_ = item;
  parts_->window->show({reported, callbacks_.statusItemFrames()});
  // A bar takes its own highlight away when the click that opened the dashboard ends.
  services_.mainLoop.post(lifetime_.guard([this] {
    if (visible()) setItemHighlighted(true);
  }));
  if (!visible()) return;
  setItemHighlighted(true);
  callbacks_.tabShown(parts_->controller.selectedTab());
}

void Dashboard::follow(const std::shared_ptr<StatusItem>& item, std::optional<Rect> place) {
  if (visible() && item_.lock() == item) parts_->window->show({place, callbacks_.statusItemFrames()});
}

void Dashboard::loadOffscreen(DashboardTab tab) {
  offscreen_ = true;
  prepare(tab);
  parts_->window->prepare();
}

void Dashboard::prepare(std::optional<DashboardTab> tab) {
  if (!parts_) create();
  parts_->controller.setActivityMonitorEnabled(services_.workspace.hasSystemMonitor());
  parts_->controller.open(tab);
}

void Dashboard::create() {
  parts_ = std::make_unique<Parts>(sources_, services_.windows);
  auto& [controller, window] = *parts_;
  controller.onContentChanged = [this] { parts_->window->render(parts_->controller.content()); };
  controller.awakeView().onSettingsChanged = callbacks_.settingsChanged;
  window->setEvents(
      {.acted = [this](const ControlEvent& event) { handle(event); }, .closed = [this](ClosedBy by) { closed(by); }});
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
  if (identifier == kTabsIdentifier) callbacks_.tabShown(parts_->controller.selectedTab());
}

void Dashboard::close() {
  if (parts_) parts_->window->hide();
}

void Dashboard::closed(ClosedBy by) {
  if (by == ClosedBy::clickElsewhere) {
    closedItem_ = item_;
    closedAt_ = sources_.clock.uptime();
  }
  setItemHighlighted(false);
  item_.reset();
}

void Dashboard::setItemHighlighted(bool highlighted) {
  if (const auto item = item_.lock()) item->setHighlighted(highlighted);
}

std::size_t Dashboard::processesWanted() const {
  const bool isShown = parts_ && (offscreen_ || visible());
  return isShown && parts_->controller.selectedTab() == DashboardTab::memory ? parts_->controller.processesWanted() : 0;
}

bool Dashboard::justClosedBy(const StatusItem& item) const {
  return closedItem_.lock().get() == &item && sources_.clock.uptime() - closedAt_ <= kClickReportLimit;
}

void Dashboard::update() {
  if (visible()) parts_->controller.show();
}

void Dashboard::updateProcesses(ProcessScan scan) {
  if (offscreen_ || visible()) parts_->controller.showProcesses(std::move(scan));
}

}  // namespace nimbo
