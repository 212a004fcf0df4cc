// SPDX-License-Identifier: MIT
#include "app/windows/dashboard.h"

#include <utility>

#include "usage/usage_status.h"

namespace nimbo {
namespace {

DashboardPreferences preferencesFrom(const Settings& settings) {
  DashboardPreferences preferences;
  preferences.tabOrder = settings.tabOrder();
  preferences.lastDashboardTab = settings.lastDashboardTab();
  preferences.monitorMemory = settings.monitorMemory();
  preferences.monitorCpu = settings.monitorCpu();
  preferences.monitorTemperature = settings.monitorTemperature();
  preferences.refreshInterval = settings.refreshInterval();
  preferences.providerOrder = settings.providerOrder();
  return preferences;
}

}  // namespace

Dashboard::Dashboard(Services services, Sources sources, Callbacks callbacks)
    : services_(services), sources_(sources), callbacks_(std::move(callbacks)) {}

bool Dashboard::open(const std::shared_ptr<StatusItem>& item, std::optional<Rect> reported,
                     std::optional<DashboardTab> tab) {
  if (!prepare(tab)) return false;
  parts_->panel->show(item, reported);
  return true;
}

bool Dashboard::loadOffscreen(DashboardTab tab) {
  offscreen_ = prepare(tab);
  return offscreen_;
}

bool Dashboard::prepare(std::optional<DashboardTab> tab) {
  if (!parts_ && !create()) return false;
  auto& controller = parts_->controller;
  controller.setActivityMonitorEnabled(services_.workspace.hasSystemMonitor());
  controller.apply(preferencesFrom(sources_.settings));
  if (tab) controller.selectTab(*tab);
  controller.awakeView().refresh(sources_.awake);
  showUsage();
  showReadings();
  return true;
}

bool Dashboard::create() {
  auto* const interface = services_.toolkit.interface();
  if (interface == nullptr) return false;
  auto parts = std::make_unique<Parts>(AwakeView::Services{sources_.settings, services_.clock, services_.dates});
  parts->window = interface->makeDashboardWindow();
  parts->panel = std::make_unique<DashboardPanel>(*parts->window, *interface, services_.mainLoop, services_.clock);
  wire(*parts);
  parts_ = std::move(parts);
  return true;
}

void Dashboard::wire(Parts& parts) {
  auto& controller = parts.controller;
  controller.onContentChanged = [&parts] {
    parts.window->render(parts.controller.content());
    parts.panel->setContentSize(parts.controller.content().size);
  };
  controller.onTabChanged = callbacks_.tabChanged;
  controller.onSettings = callbacks_.openSettings;
  controller.onQuit = callbacks_.quit;
  controller.onActivityMonitor = [this] { (void)services_.workspace.openSystemMonitor(); };

  auto& awakeView = controller.awakeView();
  awakeView.onToggle = callbacks_.toggleAwake;
  awakeView.onDisplay = callbacks_.keepDisplayOn;
  awakeView.onRules = callbacks_.awakeRulesChanged;
  awakeView.onDisplayOff = callbacks_.turnDisplayOff;
  awakeView.onExtend = callbacks_.extendAwake;

  parts.panel->statusButtons = callbacks_.statusItemFrames;
  parts.window->setActions({
      [&controller](std::size_t index) { controller.tabChanged(index); },
      [&controller] { controller.settingsClicked(); },
      [&controller] { controller.expandClicked(); },
      [&controller] { controller.collapseClicked(); },
      [&controller] { controller.activityClicked(); },
      [&controller] { controller.quitClicked(); },
      awakeView.actions(),
      {callbacks_.refreshUsage, callbacks_.configureUsage,
       [this](UsageProvider provider) { services_.workspace.openLink(usagePage(provider)); }},
  });
}

void Dashboard::close() {
  if (parts_) parts_->panel->close();
}

bool Dashboard::wantsProcesses() const {
  return parts_ && (offscreen_ || visible()) && parts_->controller.selectedTab() == DashboardTab::memory;
}

bool Dashboard::justClosedBy(const StatusItem& item) const { return parts_ && parts_->panel->justClosedBy(item); }

std::optional<DashboardTab> Dashboard::selectedTab() const {
  if (!parts_) return std::nullopt;
  return parts_->controller.selectedTab();
}

void Dashboard::updateReadings() {
  if (visible()) showReadings();
}

void Dashboard::updateAwake() {
  if (visible()) parts_->controller.awakeView().refresh(sources_.awake);
}

void Dashboard::updateUsage() {
  if (visible()) showUsage();
}

void Dashboard::showUsage() { parts_->controller.usageView().update(sources_.usage, std::nullopt); }

void Dashboard::showReadings() {
  auto& controller = parts_->controller;
  const auto& readings = sources_.readings;
  controller.update({readings.memory, readings.cpu, readings.memoryHistory, readings.cpuHistory,
                     sources_.settings.refreshInterval(), readings.memoryFailed});
  controller.updateTemperature(readings.temperature);
}

void Dashboard::updateProcesses(ProcessScan scan) {
  if (offscreen_ || visible()) parts_->controller.updateProcesses(std::move(scan));
}

}  // namespace nimbo
