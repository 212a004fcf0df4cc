// SPDX-License-Identifier: MIT
#include "app/app_delegate.h"

#include <utility>

#include "ui/status_item_content.h"

namespace nimbo {
namespace {

std::optional<DashboardTab> tabOf(StatusItemKind kind) {
  switch (kind) {
    case StatusItemKind::ai:
      return DashboardTab::ai;
    case StatusItemKind::memory:
      return DashboardTab::memory;
    case StatusItemKind::awake:
      return DashboardTab::awake;
    case StatusItemKind::compact:
      break;
  }
  return std::nullopt;  // stands for the whole program: whatever was shown last
}

}  // namespace

AppDelegate::AppDelegate(PlatformServices& platform, UserInterfaceMaker makeUserInterface, Settings& settings)
    : platform_(platform),
      settings_(settings),
      dashboard_({platform.mainLoop(), *platform.readers().clock, platform.workspace()}, std::move(makeUserInterface),
                 settings,
                 {[this] { tabChanged(); }, [this] { quit(); }, [this] { return statusItems_.knownFrames(); }}),
      sampling_({platform.mainLoop(), platform.readers(), platform.temperatureQueue(), platform.utilityQueue()},
                settings,
                {[this] { readingsChanged(); },
                 [this] { return dashboard_.visible() && dashboard_.selectedTab() == DashboardTab::memory; },
                 [this](ProcessScan scan) { dashboard_.updateProcesses(std::move(scan)); }}),
      statusItems_(platform.statusBar(), platform.mainLoop(), settings,
                   {[this](StatusItemKind kind) { return contentFor(kind); },
                    [this](StatusItemKind kind, const StatusClick& click) { statusClicked(kind, click); },
                    [this] { return statusMenu(); }, [this] { dashboard_.close(); },
                    [this] { return sleeping_ || dashboard_.visible(); }}) {}

void AppDelegate::applicationDidFinishLaunching() {
  statusItems_.configure();
  sampling_.tick();
  sampling_.startTimer();
  sleepObservation_ = platform_.systemSleep().observe([this] { willSleep(); }, [this] { didWake(); });
  terminationObservation_ = platform_.termination().observe([this] { platform_.mainLoop().quit(); });
}

void AppDelegate::applicationWillTerminate() {
  sampling_.stopTimer();
  statusItems_.stopRotation();
  sleepObservation_.reset();
  terminationObservation_.reset();
}

void AppDelegate::activate() {
  if (const auto first = statusItems_.firstItem()) openDashboard(*first, std::nullopt);
}

void AppDelegate::willSleep() {
  sleeping_ = true;
  statusItems_.stopRotation();
  sampling_.willSleep();
  dashboard_.close();
}

void AppDelegate::didWake() {
  sleeping_ = false;
  sampling_.didWake();
  statusItems_.restartRotation();
}

void AppDelegate::quit() {
  if (applicationShouldTerminate()) platform_.mainLoop().quit();
}

void AppDelegate::statusClicked(StatusItemKind kind, const StatusClick& click) {
  if (click.alternate) return;  // the direct switch for Keep Awake, which this version does not have yet
  if (dashboard_.visible()) {
    dashboard_.close();
    return;
  }
  const auto item = statusItems_.item(kind);
  if (item && dashboard_.justClosedBy(*item)) return;
  openDashboard(kind, tabOf(kind));
}

void AppDelegate::openDashboard(StatusItemKind kind, std::optional<DashboardTab> tab) {
  if (!dashboard_.open(statusItems_.item(kind), statusItems_.knownFrame(kind), tab, sampling_.readings())) return;
  tabChanged();
  statusItems_.restartRotation();
}

StatusItemContent AppDelegate::contentFor(StatusItemKind kind) const {
  const auto& readings = sampling_.readings();
  switch (kind) {
    case StatusItemKind::ai:
      return emptyUsageItemContent();
    case StatusItemKind::memory:
      return memoryItemContent(readings.memory, readings.memoryFailed, settings_.showChart());
    case StatusItemKind::awake:
      return awakeItemContent(false);
    case StatusItemKind::compact:
      break;
  }
  return compactItemContent(false);
}

StatusMenu AppDelegate::statusMenu() {
  StatusMenuActions actions;
  actions.quit = [this] { quit(); };
  return makeStatusMenu(actions, AwakeSession::off);
}

void AppDelegate::readingsChanged() {
  statusItems_.refresh();
  dashboard_.update(sampling_.readings());
}

void AppDelegate::tabChanged() {
  const auto tab = dashboard_.selectedTab();
  if (!tab) return;
  settings_.setLastDashboardTab(*tab);
  sampling_.startProcessScan(SamplingLoop::Throttle::ignore);
}

}  // namespace nimbo
