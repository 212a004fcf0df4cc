// SPDX-License-Identifier: MIT
#include "app/app_delegate.h"

#include <utility>

#include "app/launch.h"
#include "ui/tray/usage_menu_gauge.h"

namespace nimbo {

AppDelegate::AppDelegate(PlatformServices& platform, UserInterface& windows, Settings& settings, Audience audience)
    : platform_(platform),
      clock_(*platform.readers().clock),
      audience_(audience),
      settings_(settings),
      notices_(platform.workspace(), [this] { statusItems_.refresh(); }),
      awake_({platform.mainLoop(), clock_, platform.assertionClient(), platform.powerSources(), platform.displayPower(),
              settings, platform.wording()}),
      usage_(platform, settings, [this] { usageChanged(); }),
      sampling_(platform, settings, samplingCallbacks()),
      widgets_(platform, {settings, sampling_.readings(), usage_.states()}, audience == Audience::user,
               [this] { settingsWindow_.syncIfVisible(); }),
      updateAlerts_(windows, {.willShow = [this] { dashboard_.close(); },
                              .found = [this](const auto& title, const auto& text) { notices_.tell(title, text); }}),
      updater_(platform, updateAlerts_),
      dashboard_(
          {windows, platform.mainLoop(), platform.workspace()},
          {settings, sampling_.readings(), awake_, usage_.states(), clock_, platform.dates(), platform.wording()},
          dashboardCallbacks()),
      systemRequests_(platform, windows),
      settingsWindow_({settings, platform.bundleInfo(), platform.loginItem(), platform.wording()},
                      settingsWindowCallbacks(windows)),
      quitQuestion_(windows, platform.mainLoop(), awake_, platform.wording(), [this] { dashboard_.close(); }),
      statusItems_(platform.statusBar(), platform.mainLoop(), settings, statusItemCallbacks()) {
  awake_.onChange = [this] {
    refreshViews();
    quitQuestion_.sessionChanged();
    platform_.remoteControl().awakeChanged();
  };
  awake_.onRefusal = [this](const std::string& message) {
    if (!dashboard_.shows(DashboardTab::awake)) notices_.tell("Keep Awake", message);
  };
  windows.setMenuListener([this](MenuRole chosen) {
    if (chosen == MenuRole::openSettings) openSettings();
    if (chosen == MenuRole::quit) quit();
  });
  windows.setAppearance(platform.workspace().appearance());
  appearanceObservation_ =
      platform.workspace().observeAppearance([&windows](Appearance appearance) { windows.setAppearance(appearance); });
}

SamplingLoop::Callbacks AppDelegate::samplingCallbacks() {
  return {
      .willTick = [this] { awake_.tick(clock_.now()); },
      .readingsChanged = [this] { readingsChanged(); },
      .temperatureFound = [this] { widgets_.writeWidgetSnapshot(WidgetPublisher::Force::yes); },
      .processesWanted = [this] { return dashboard_.processesWanted(); },
      .processesScanned = [this](ProcessScan scan) { dashboard_.updateProcesses(std::move(scan)); },
  };
}

Dashboard::Callbacks AppDelegate::dashboardCallbacks() {
  return {
      .tabShown = [this](DashboardTab tab) { tabShown(tab); },
      .openSettings = [this] { openSettings(); },
      .configureUsage = [this] { openSettings(SettingsTab::usage); },
      .quit = [this] { quit(); },
      .statusItemFrames = [this] { return statusItems_.knownFrames(); },
      .settingsChanged = [this] { settingsWindow_.syncIfVisible(); },
      .refreshUsage = [this] { usage_.refreshAll(); },
  };
}

StatusItems::Callbacks AppDelegate::statusItemCallbacks() {
  return {
      .content = [this](StatusItemTab tab) { return notices_.withLatest(contentFor(tab)); },
      .clicked = [this](StatusItemTab tab, const StatusClick& click) { statusClicked(tab, click); },
      .menu = [this] { return statusMenu(); },
      .menuWillOpen =
          [this] {
            notices_.clear();
            dashboard_.close();
          },
      .moved = [this](StatusItemTab tab) { dashboard_.follow(statusItems_.item(tab), statusItems_.knownFrame(tab)); },
      .rotationPaused = [this] { return sleeping_ || dashboard_.visible(); },
  };
}

SettingsWindowController::Callbacks AppDelegate::settingsWindowCallbacks(UserInterface& windows) {
  return {
      .makeWindow = [&windows] { return windows.makeSettingsWindow(); },
      .changed = [this](const SettingsChange& change) { settingsChanged(change); },
      .toggleLogin = [this] { systemRequests_.toggleLogin(); },
      .checkForUpdates = [this] { updater_.checkForUpdates(); },
      .toggleAutomaticUpdates = [this] { updater_.toggleAutomaticChecks(); },
      .enableClaudeDesktop = [this] { systemRequests_.openClaudeDesktop(); },
      .automaticUpdates = [this] { return updater_.automaticallyChecksForUpdates(); },
      .manualSleepApplies = [this] { return awake_.manualSleepApplies(); },
      .widgetMessage = [this] { return widgets_.widgetMessage(); },
  };
}

StatusItemContent AppDelegate::contentFor(StatusItemTab tab) const {
  if (!tab) return compactItemContent(awake_.isActive(), platform_.wording());
  switch (*tab) {
    case DashboardTab::ai: {
      const auto gauges = menuGauges(settings_, usage_.states(), clock_.now(), platform_.dates());
      return usageItemContent(gauges, settings_.aiMenuRemaining(), clock_.now());
    }
    case DashboardTab::memory: {
      const auto& readings = sampling_.readings();
      return memoryItemContent(readings.memory, readings.memoryFailed, memoryPicture());
    }
    case DashboardTab::awake:
      return awakeItemContent(awake_.isActive());
  }
  return {};
}

MemoryPicture AppDelegate::memoryPicture() const {
  if (settings_.showChart()) return MemoryPicture::chart;
  return platform_.statusBar().showsTitles() ? MemoryPicture::symbol : MemoryPicture::figure;
}

StatusMenu AppDelegate::statusMenu() {
  using enum MenuEntry::Kind;
  const char* const toggle = awake_.isActive() ? "Stop awake session" : "Keep awake until stopped";
  const MenuEntry line{separator, {}, false, {}, {}};
  return {"Nimbo",
          {
              {action, toggle, true, {}, [this] { awake_.toggle(std::nullopt); }},
              line,
              {action, "Settings…", true, ",", [this] { openSettings(); }},
              {action, "Check for Updates…", true, {}, [this] { updater_.checkForUpdates(); }},
              line,
              {action, "Quit Nimbo", true, {}, [this] { quit(); }},
          }};
}

void AppDelegate::applicationDidFinishLaunching() {
  usage_.refreshDue();
  updater_.start();
  statusItems_.configure();
  sampling_.tick();
  sampling_.startTimer();
  didFinishLaunching_ = true;
  if (pendingTab_) platform_.mainLoop().post([this] { openDashboard(statusItems_.firstItem(), pendingTab_); });
  sleepObservation_ = platform_.systemSleep().observe([this] { willSleep(); }, [this] { didWake(); });
  // A log-out or a shutdown cannot wait for an answer.
  terminationObservation_ =
      platform_.termination().observe([this](Termination::Cause) { platform_.mainLoop().quit(); });
  if (audience_ == Audience::none) return;
  platform_.statusBar().onAbsence([this](const std::string& advice) { trayIsAbsent(advice); });
}

void AppDelegate::applicationWillTerminate() {
  sampling_.stopTimer();
  statusItems_.stopRotation();
  usage_.stop();
  awake_.stopByUser();
  sleepObservation_.reset();
  terminationObservation_.reset();
}

RemoteControlHandlers AppDelegate::remoteControlHandlers() {
  const auto outcome = [this](bool done) -> Result<void, std::string> {
    if (!done) return tl::unexpected(awake_.message());
    return {};
  };
  return {
      .awake =
          [this] {
            return AwakeStatus{awake_.isActive(),       awake_.isOwn(),   awake_.endsAt(),
                               awake_.keepsDisplayOn(), awake_.message(), awake_.holders()};
          },
      .start = [this, outcome](
                   std::optional<AwakeManager::Time> until,
                   bool keepDisplayOn) { return outcome(awake_.start(until, keepDisplayOn, clock_.now())); },
      .stop = [this] { awake_.stopByUser(); },
      .extend = [this](std::chrono::seconds by) -> Result<void, std::string> {
        if (!awake_.endsAt()) return tl::unexpected(std::string("No session with an end runs."));
        awake_.extend(by);
        return {};
      },
      .hold = [this](const std::string& name, bool display) { return awake_.hold(name, display); },
      .letGo = [this](std::uint32_t holder) { awake_.letGo(holder); },
      .usage = [this]() -> const UsageStates& { return usage_.states(); },
      .refreshUsage = [this] { usage_.refreshAll(); },
      .readings = [this]() -> const SystemReadings& { return sampling_.readings(); },
  };
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
  settingsWindow_.show(tab);
}

void AppDelegate::loadDashboardOffscreen() {
  dashboard_.loadOffscreen(DashboardTab::memory);
  sampling_.startProcessScan(SamplingLoop::Throttle::ignore);
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
  notices_.clear();
  if (click.alternate) return awake_.toggleTimed();
  if (dashboard_.visible()) return dashboard_.close();
  const auto clicked = statusItems_.item(item);
  if (clicked && dashboard_.justClosedBy(*clicked)) return;
  openDashboard(item, item);
}

void AppDelegate::openDashboard(StatusItemTab item, std::optional<DashboardTab> tab) {
  notices_.clear();
  dashboard_.open(statusItems_.item(item), statusItems_.knownFrame(item), tab);
  if (dashboard_.visible()) statusItems_.restartRotation();
}

void AppDelegate::trayIsAbsent(const std::string& advice) {
  activate();
  notices_.tell("Nimbo has no tray to sit in", advice + " Until then, start Nimbo again to open it.");
}

// Comes with every tick, which is also when a provider may be due and the countdowns go on.
void AppDelegate::readingsChanged() {
  usage_.refreshDue();
  widgets_.writeWidgetSnapshot(WidgetPublisher::Force::no);
  refreshViews();
  platform_.remoteControl().readingsChanged();
}

void AppDelegate::tabShown(DashboardTab tab) {
  settings_.setLastDashboardTab(tab);
  sampling_.startProcessScan(SamplingLoop::Throttle::ignore);
}

void AppDelegate::refreshViews() {
  statusItems_.refresh();
  dashboard_.update();
}

void AppDelegate::usageChanged() {
  refreshViews();
  platform_.remoteControl().usageChanged();
  // What a read brought must not reach the widgets five minutes late.
  if (!usage_.isRefreshing()) widgets_.writeWidgetSnapshot(WidgetPublisher::Force::yes);
}

void AppDelegate::settingsChanged(const SettingsChange& change) {
  switch (change.kind) {
    case SettingsChange::Kind::display:
      awake_.keepDisplayOn(change.on);
      return refreshViews();
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
      return awake_.rulesChanged();
    case SettingsChange::Kind::presentation:
      return statusItems_.configure();
  }
}

}  // namespace nimbo
