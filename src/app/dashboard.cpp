// SPDX-License-Identifier: MIT
#include "app/dashboard.h"

#include <utility>

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
  return preferences;
}

}  // namespace

Dashboard::Dashboard(Services services, UserInterfaceMaker makeUserInterface, const Settings& settings,
                     Callbacks callbacks)
    : services_(services),
      makeUserInterface_(std::move(makeUserInterface)),
      settings_(settings),
      callbacks_(std::move(callbacks)) {}

bool Dashboard::open(const std::shared_ptr<StatusItem>& item, std::optional<Rect> reported,
                     std::optional<DashboardTab> tab, const SystemReadings& readings) {
  if (!parts_ && !create()) return false;
  auto& controller = parts_->controller;
  controller.setActivityMonitorEnabled(services_.workspace.hasSystemMonitor());
  controller.apply(preferencesFrom(settings_));
  if (tab) controller.selectTab(*tab);
  show(readings);
  parts_->panel->show(item, reported);
  return true;
}

bool Dashboard::create() {
  auto interface = makeUserInterface_();
  if (!interface) return false;
  services_.mainLoop.adopt(interface->loop());
  auto parts = std::make_unique<Parts>();
  parts->interface = std::move(interface);
  parts->window = parts->interface->makeDashboardWindow();
  parts->panel =
      std::make_unique<DashboardPanel>(*parts->window, *parts->interface, services_.mainLoop, services_.clock);
  wire(*parts);
  parts_ = std::move(parts);
  return true;
}

void Dashboard::wire(Parts& parts) {
  auto& toolkit = *parts.interface;
  toolkit.setAppearance(services_.workspace.appearance());
  parts.appearance =
      services_.workspace.observeAppearance([&toolkit](Appearance appearance) { toolkit.setAppearance(appearance); });

  auto& controller = parts.controller;
  // The settings window does not exist yet, so its button leads nowhere.
  controller.setSettingsEnabled(false);
  controller.onContentChanged = [&parts] {
    parts.window->render(parts.controller.content());
    parts.panel->setContentSize(parts.controller.content().size);
  };
  controller.onTabChanged = callbacks_.tabChanged;
  controller.onQuit = callbacks_.quit;
  controller.onActivityMonitor = [this] { (void)services_.workspace.openSystemMonitor(); };

  parts.panel->statusButtons = callbacks_.statusItemFrames;
  parts.window->setActions({
      [&controller](std::size_t index) { controller.tabChanged(index); },
      [&controller] { controller.settingsClicked(); },
      [&controller] { controller.expandClicked(); },
      [&controller] { controller.collapseClicked(); },
      [&controller] { controller.activityClicked(); },
      [&controller] { controller.quitClicked(); },
  });
}

void Dashboard::close() {
  if (parts_) parts_->panel->close();
}

bool Dashboard::justClosedBy(const StatusItem& item) const { return parts_ && parts_->panel->justClosedBy(item); }

std::optional<DashboardTab> Dashboard::selectedTab() const {
  if (!parts_) return std::nullopt;
  return parts_->controller.selectedTab();
}

void Dashboard::update(const SystemReadings& readings) {
  if (visible()) show(readings);
}

void Dashboard::show(const SystemReadings& readings) {
  auto& controller = parts_->controller;
  controller.update({readings.memory, readings.cpu, readings.memoryHistory, readings.cpuHistory,
                     settings_.refreshInterval(), readings.memoryFailed});
  controller.updateTemperature(readings.temperature);
}

void Dashboard::updateProcesses(ProcessScan scan) {
  if (parts_) parts_->controller.updateProcesses(std::move(scan));
}

}  // namespace nimbo
