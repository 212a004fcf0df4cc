// SPDX-License-Identifier: MIT
#include "app/app_delegate.h"

#include <utility>

#include "app/tray/status_menu.h"
#include "app/widgets/widget_link.h"
#include "ui/tray/status_item_content.h"
#include "ui/tray/usage_menu_gauge.h"

namespace nimbo {

AppDelegate::AppDelegate(PlatformServices& platform, UserInterfaceMaker makeUserInterface, Settings& settings,
                         Widgets widgets)
    : platform_(platform),
      clock_(*platform.readers().clock),
      settings_(settings),
      awake_(
          {platform.mainLoop(), clock_, platform.assertionClient(), platform.powerSources(), platform.displayPower()}),
      awakeCommands_(awake_, settings, clock_),
      usage_(platform, settings, [this] { usageChanged(); }),
      toolkit_(platform.mainLoop(), platform.workspace(), std::move(makeUserInterface),
               makeMainMenu({.openSettings = [this] { openSettings(); }, .quit = [this] { quit(); }})),
      sampling_(platform, settings, samplingCallbacks()),
      widgets_(platform, {settings, sampling_.readings(), usage_.states()}, widgets == Widgets::published,
               [this] { settingsWindow_.update(); }),
      updateAlerts_(toolkit_, platform.mainLoop(), [this] { dashboard_.close(); }),
      updater_(platform, updateAlerts_),
      dashboard_({toolkit_, platform.mainLoop(), platform.workspace()},
                 {settings, sampling_.readings(), awake_, usage_.states(), clock_, platform.dates()},
                 dashboardCallbacks()),
      systemRequests_(platform, toolkit_),
      settingsWindow_(platform, toolkit_, settings, settingsWindowCallbacks()),
      quitQuestion_(toolkit_, platform.mainLoop(), awake_, [this] { dashboard_.close(); }),
      statusItems_(platform.statusBar(), platform.mainLoop(), settings, statusItemCallbacks()) {
  awake_.onChange = [this] { awakeChanged(); };
}

SamplingLoop::Callbacks AppDelegate::samplingCallbacks() {
  return {
      .willTick = [this] { awake_.tick(clock_.now()); },
      .readingsChanged = [this] { readingsChanged(); },
      .temperatureFound = [this] { widgets_.writeWidgetSnapshot(WidgetPublisher::Force::yes); },
      .wantsProcesses = [this] { return dashboard_.wantsProcesses(); },
      .processesScanned = [this](ProcessScan scan) { dashboard_.updateProcesses(std::move(scan)); },
  };
}

Dashboard::Callbacks AppDelegate::dashboardCallbacks() {
  return {
      .tabChanged = [this] { tabChanged(); },
      .openSettings = [this] { openSettings(); },
      .configureUsage = [this] { openSettings(SettingsTab::usage); },
      .quit = [this] { quit(); },
      .statusItemFrames = [this] { return statusItems_.knownFrames(); },
      .awake = {.toggle = [this](std::optional<AwakeManager::Time> end) { awakeCommands_.toggle(end); },
                .keepDisplayOn = [this](bool on) { keepDisplayOn(on); },
                .rulesChanged =
                    [this] {
                      awakeCommands_.applyRules();
                      settingsWindow_.update();
                    },
                .turnDisplayOff = [this] { awake_.turnDisplayOff(); },
                .extend = [this] { awakeCommands_.extend(); }},
      .refreshUsage = [this] { usage_.refreshAll(); },
  };
}

StatusItems::Callbacks AppDelegate::statusItemCallbacks() {
  return {
      .content = [this](StatusItemTab tab) { return contentFor(tab); },
      .clicked = [this](StatusItemTab tab, const StatusClick& click) { statusClicked(tab, click); },
      .menu = [this] { return statusMenu(); },
      .menuWillOpen = [this] { dashboard_.close(); },
      .rotationPaused = [this] { return sleeping_ || dashboard_.visible(); },
  };
}

SettingsWindowOpener::Callbacks AppDelegate::settingsWindowCallbacks() {
  return {
      .changed = [this](const SettingsChange& change) { settingsChanged(change); },
      .toggleLogin = [this] { systemRequests_.toggleLogin(); },
      .checkForUpdates = [this] { updater_.checkForUpdates(); },
      .toggleAutomaticUpdates = [this] { updater_.toggleAutomaticChecks(); },
      .enableClaudeDesktop = [this] { systemRequests_.openClaudeDesktop(); },
      .automaticUpdates = [this] { return updater_.automaticallyChecksForUpdates(); },
      .widgetMessage = [this] { return widgets_.widgetMessage(); },
  };
}

StatusItemContent AppDelegate::contentFor(StatusItemTab tab) const {
  if (!tab) return compactItemContent(awake_.isActive());
  switch (*tab) {
    case DashboardTab::ai: {
      const auto gauges = menuGauges(settings_, usage_.states(), clock_.now(), platform_.dates());
      return usageItemContent(gauges, settings_.aiMenuRemaining(), clock_.now());
    }
    case DashboardTab::memory: {
      const auto& readings = sampling_.readings();
      return memoryItemContent(readings.memory, readings.memoryFailed, settings_.showChart());
    }
    case DashboardTab::awake:
      return awakeItemContent(awake_.isActive());
  }
  return {};
}

StatusMenu AppDelegate::statusMenu() {
  return makeStatusMenu({.quickToggleAwake = [this] { awakeCommands_.toggle(std::nullopt); },
                         .openSettings = [this] { openSettings(); },
                         .checkForUpdates = [this] { updater_.checkForUpdates(); },
                         .quit = [this] { quit(); }},
                        awake_.isActive() ? AwakeSession::running : AwakeSession::off);
}

void AppDelegate::applicationDidFinishLaunching() {
  awakeCommands_.applyRules();
  usage_.refreshDue();
  updater_.start();
  statusItems_.configure();
  sampling_.tick();
  sampling_.startTimer();
  didFinishLaunching_ = true;
  if (pendingTab_) platform_.mainLoop().post([this] { openDashboard(statusItems_.firstItem(), pendingTab_); });
  sleepObservation_ = platform_.systemSleep().observe([this] { willSleep(); }, [this] { didWake(); });
  // A log-out or a shutdown cannot wait for an answer.
  terminationObservation_ = platform_.termination().observe([this] { platform_.mainLoop().quit(); });
}

void AppDelegate::applicationWillTerminate() {
  sampling_.stopTimer();
  statusItems_.stopRotation();
  usage_.stop();
  awake_.stopByUser();
  sleepObservation_.reset();
  terminationObservation_.reset();
}

void AppDelegate::activate() { openDashboard(statusItems_.firstItem(), std::nullopt); }

void AppDelegate::open(const std::vector<std::string>& links) {
  const auto tab = tabOfLastLink(links);
  if (!tab) return;
  if (didFinishLaunching_) {
    openDashboard(statusItems_.firstItem(), tab);
  } else {
    pendingTab_ = tab;
  }
}

void AppDelegate::openSettings(std::optional<SettingsTab> tab) {
  dashboard_.close();
  settingsWindow_.open(tab);
}

bool AppDelegate::loadDashboardOffscreen() {
  if (!dashboard_.loadOffscreen(DashboardTab::memory)) return false;
  sampling_.startProcessScan(SamplingLoop::Throttle::ignore);
  return true;
}

void AppDelegate::willSleep() {
  sleeping_ = true;
  statusItems_.stopRotation();
  usage_.stop();
  sampling_.willSleep();
  dashboard_.close();
}

void AppDelegate::didWake() {
  sleeping_ = false;
  awake_.checkDeadline(clock_.now());
  awake_.checkBattery();
  sampling_.didWake();
  statusItems_.restartRotation();
}

void AppDelegate::statusClicked(StatusItemTab item, const StatusClick& click) {
  if (click.alternate) return awakeCommands_.toggleTimed();
  if (dashboard_.visible()) return dashboard_.close();
  const auto clicked = statusItems_.item(item);
  if (clicked && dashboard_.justClosedBy(*clicked)) return;
  openDashboard(item, item);
}

void AppDelegate::openDashboard(StatusItemTab item, std::optional<DashboardTab> tab) {
  if (!dashboard_.open(statusItems_.item(item), statusItems_.knownFrame(item), tab)) return;
  tabChanged();
  statusItems_.restartRotation();
}

void AppDelegate::keepDisplayOn(bool on) {
  awakeCommands_.keepDisplayOn(on);
  awakeChanged();
  settingsWindow_.update();
}

// Comes with every tick, which is also when a provider may be due and the countdowns go on.
void AppDelegate::readingsChanged() {
  usage_.refreshDue();
  widgets_.writeWidgetSnapshot(WidgetPublisher::Force::no);
  statusItems_.refresh();
  dashboard_.update();
}

void AppDelegate::tabChanged() {
  const auto tab = dashboard_.selectedTab();
  if (!tab) return;
  settings_.setLastDashboardTab(*tab);
  sampling_.startProcessScan(SamplingLoop::Throttle::ignore);
}

void AppDelegate::awakeChanged() {
  statusItems_.refresh();
  dashboard_.update();
}

void AppDelegate::usageChanged() {
  statusItems_.refresh();
  dashboard_.update();
  // What a read brought must not reach the widgets five minutes late.
  if (!usage_.isRefreshing()) widgets_.writeWidgetSnapshot(WidgetPublisher::Force::yes);
}

void AppDelegate::settingsChanged(const SettingsChange& change) {
  switch (change.kind) {
    case SettingsChange::Kind::display:
      return keepDisplayOn(change.on);
    case SettingsChange::Kind::monitors:
      statusItems_.configure();
      sampling_.monitorsChanged();
      return widgets_.writeWidgetSnapshot(WidgetPublisher::Force::yes);
    case SettingsChange::Kind::appearance:
      return statusItems_.refresh();
    case SettingsChange::Kind::interval:
      sampling_.tick();
      return sampling_.startTimer();
    case SettingsChange::Kind::usage:
      return usage_.settingsChanged();
    case SettingsChange::Kind::awakeRules:
      return awakeCommands_.applyRules();
    case SettingsChange::Kind::presentation:
      return statusItems_.configure();
  }
}

}  // namespace nimbo
