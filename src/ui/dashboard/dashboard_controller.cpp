// SPDX-License-Identifier: MIT
#include "ui/dashboard/dashboard_controller.h"

#include <algorithm>
#include <utility>

namespace nimbo {
namespace {

constexpr double kWidth = 340;
constexpr double kFooterHeight = 38;
constexpr double kUsagePageHeight = 496;
constexpr double kAwakePageHeight = 446;
constexpr std::size_t kProcessLimitStep = 10;

const char* tabLabel(DashboardTab tab) {
  switch (tab) {
    case DashboardTab::ai:
      return "AI";
    case DashboardTab::memory:
      return "Mem";
    case DashboardTab::awake:
      return "Awake";
  }
  return "";
}

double pageHeight(DashboardTab tab, const ResourcesPage& resources) {
  switch (tab) {
    case DashboardTab::ai:
      return kUsagePageHeight;
    case DashboardTab::memory:
      return resourcesPageHeight(resources);
    case DashboardTab::awake:
      return kAwakePageHeight;
  }
  return 0;
}

void fillHeader(DashboardContent& content, const std::vector<DashboardTab>& tabOrder, std::size_t selected) {
  content.title = {{20, 19, 48, 22}, {15, FontWeight::semibold}, "Nimbo"};
  content.tabs = {{70, 17, 218, 26}, {}, selected};
  for (const auto tab : tabOrder) content.tabs.labels.emplace_back(tabLabel(tab));
  content.settingsButton = {"settings", {293, 16, 28, 28}, ButtonLook::icon, 13, "gearshape", "Settings"};
  content.settingsButton.toolTip = "Settings: monitors, display, refresh interval";
}

void fillFooter(DashboardContent& content, double y) {
  content.footerSeparator = {20, y, 300, 1};
  content.quitButton = {"quit", {211, y + 7, 86, 24}, ButtonLook::rounded, 12, "Quit Nimbo"};
  content.quitButton.toolTip = "Quit Nimbo and end any Keep Awake session";
  content.quitButton.keyEquivalent = "q";
  content.quitHint = {{299, y + 11, 25, 18}, {11, FontWeight::regular, ColorRole::secondaryLabel}, "⌘Q"};
}

void call(const std::function<void()>& callback) {
  if (callback) callback();
}

}  // namespace

DashboardController::DashboardController(AwakeView::Services services)
    : awakeView_(services), usageView_(services.clock, services.dates) {
  awakeView_.onContentChanged = [this] { refresh(); };
  usageView_.onContentChanged = [this] { refresh(); };
  refresh();
}

DashboardTab DashboardController::selectedTab() const {
  return tabOrder_[std::min(selectedSegment_, tabOrder_.size() - 1)];
}

void DashboardController::apply(const DashboardPreferences& preferences) {
  const auto shown = std::exchange(configuredOrder_, true) ? selectedTab() : preferences.lastDashboardTab;
  if (!preferences.tabOrder.empty()) tabOrder_ = preferences.tabOrder;
  selectedSegment_ = segmentOf(shown);
  resources_.memoryEnabled = preferences.monitorMemory;
  resources_.cpuVisible = preferences.monitorCpu;
  resources_.temperatureVisible = preferences.monitorTemperature;
  resources_.refreshInterval = preferences.refreshInterval;
  usageView_.setOrder(preferences.providerOrder);
  awakeView_.load();
  refresh();
}

void DashboardController::update(const ResourcesSample& sample) {
  resources_.sample = sample;
  refresh();
}

void DashboardController::updateProcesses(ProcessScan scan) {
  resources_.processScan = std::move(scan);
  refresh();
}

void DashboardController::updateTemperature(std::optional<double> celsius) {
  resources_.temperature = temperatureLine(celsius);
  refresh();
}

void DashboardController::selectTab(DashboardTab tab) {
  selectedSegment_ = segmentOf(tab);
  refresh();
}

void DashboardController::setActivityMonitorEnabled(bool enabled) {
  resources_.activityMonitorEnabled = enabled;
  refresh();
}

void DashboardController::tabChanged(std::size_t index) {
  selectedSegment_ = index;
  refresh();
  call(onTabChanged);
}

void DashboardController::expandClicked() {
  resources_.processLimit += kProcessLimitStep;
  refresh();
  call(onExpand);
}

void DashboardController::collapseClicked() {
  resources_.processLimit = kCollapsedProcessLimit;
  refresh();
  call(onExpand);
}

void DashboardController::settingsClicked() const { call(onSettings); }
void DashboardController::quitClicked() const { call(onQuit); }
void DashboardController::activityClicked() const { call(onActivityMonitor); }

std::size_t DashboardController::segmentOf(DashboardTab tab) const {
  const auto found = std::find(tabOrder_.begin(), tabOrder_.end(), tab);
  return found == tabOrder_.end() ? 0 : static_cast<std::size_t>(found - tabOrder_.begin());
}

void DashboardController::refresh() {
  const DashboardTab tab = selectedTab();
  resources_.visible = tab == DashboardTab::memory;
  const double height = pageHeight(tab, resources_);

  DashboardContent content;
  content.size = {kWidth, height + kFooterHeight};
  fillHeader(content, tabOrder_, std::min(selectedSegment_, tabOrder_.size() - 1));
  fillResourcesPage(content, resources_);
  content.usage = usageView_.content(tab == DashboardTab::ai);
  content.awake = awakeView_.content(tab == DashboardTab::awake);
  fillFooter(content, height);

  if (content == content_) return;
  content_ = std::move(content);
  call(onContentChanged);
}

}  // namespace nimbo
