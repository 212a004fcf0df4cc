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

void fillHeader(DashboardContent& content, const std::vector<DashboardTab>& tabOrder, DashboardTab selected) {
  content.title = {{20, 19, 48, 22}, {15, FontWeight::semibold}, "Nimbo"};
  content.tabs = {{70, 17, 218, 26}, {}, 0};
  for (const auto tab : tabOrder) {
    if (tab == selected) content.tabs.selected = content.tabs.labels.size();
    content.tabs.labels.emplace_back(tabLabel(tab));
  }
  content.settingsButton = {"settings", {293, 16, 28, 28}, ButtonLook::icon, 13, "gearshape", "Settings"};
  content.settingsButton.toolTip = "Settings: monitors, display, refresh interval";
  content.settingsButton.keyEquivalent = ",";
}

void fillFooter(DashboardContent& content, double y, const Wording& wording) {
  content.footerSeparator = {20, y, 300, 1};
  // Longer keys push the button to the left.
  const double keysX = 324 - wording.quitKeysWidth;
  content.quitButton = {"quit", {keysX - 88, y + 7, 86, 24}, ButtonLook::rounded, 12, "Quit Nimbo"};
  content.quitButton.toolTip = "Quit Nimbo and end any Keep Awake session";
  content.quitButton.keyEquivalent = "q";
  content.quitHint = {{keysX, y + 11, wording.quitKeysWidth, 18},
                      {11, FontWeight::regular, ColorRole::secondaryLabel},
                      wording.quitKeys};
}

}  // namespace

DashboardController::DashboardController(const DashboardSources& sources)
    : sources_(sources), tab_(sources.settings.lastDashboardTab()), awakeView_(sources, [this] { show(); }) {}

void DashboardController::open(std::optional<DashboardTab> tab) {
  if (tab) tab_ = *tab;
  awakeView_.reset();
  show();
}

void DashboardController::showProcesses(ProcessScan scan) {
  processes_.scan = std::move(scan);
  show();
}

void DashboardController::handle(const ControlEvent& event) {
  const auto& identifier = event.identifier;
  if (identifier == kTabsIdentifier) {
    const auto order = sources_.settings.tabOrder();
    tab_ = order[std::min(event.as<std::size_t>(), order.size() - 1)];
  } else if (identifier == "more") {
    processes_.limit += kProcessLimitStep;
  } else if (identifier == "less") {
    processes_.limit = kCollapsedProcessLimit;
  } else {
    return awakeView_.handle(event);
  }
  show();
}

void DashboardController::show() {
  if (onContentChanged) onContentChanged();
}

/// Returns the page's height.
double DashboardController::fillPage(DashboardContent& content) const {
  switch (tab_) {
    case DashboardTab::ai:
      content.page = usageContent(sources_);
      return kUsagePageHeight;
    case DashboardTab::memory:
      content.page = resourcesContent(sources_, processes_);
      return resourcesHeight(sources_, processes_);
    case DashboardTab::awake:
      content.page = awakeView_.content();
      return kAwakePageHeight;
  }
  return 0;
}

DashboardContent DashboardController::content() const {
  DashboardContent content;
  fillHeader(content, sources_.settings.tabOrder(), tab_);
  const double height = fillPage(content);
  fillFooter(content, height, sources_.wording);
  content.size = {kWidth, height + kFooterHeight};
  return content;
}

}  // namespace nimbo
