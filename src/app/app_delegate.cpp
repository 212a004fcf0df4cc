// SPDX-License-Identifier: MIT
#include "app/app_delegate.h"

#include <algorithm>
#include <utility>

#include "awake/session_length.h"
#include "ui/tray/status_item_content.h"
#include "ui/tray/usage_menu_gauge.h"

namespace nimbo {
namespace {

constexpr std::chrono::minutes kExtension{30};
constexpr const char* kClaudeDesktop = "com.anthropic.claudefordesktop";

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

AppDelegate::AppDelegate(PlatformServices& platform, UserInterfaceMaker makeUserInterface, Settings& settings,
                         Widgets widgets)
    : confirmEndingAwakeSession([this](QuitDecision decided) { showQuitAlert(std::move(decided)); }),
      platform_(platform),
      settings_(settings),
      awake_({platform.mainLoop(), *platform.readers().clock, platform.assertionClient(), platform.powerSources(),
              platform.displayPower()}),
      usageReaders_(platform),
      usage_(usageReaders_.reads(), *platform.readers().clock, platform.dates()),
      toolkit_(platform.mainLoop(), platform.workspace(), std::move(makeUserInterface),
               makeMainMenu({[this] { openSettings(); }, [this] { quit(); }})),
      sampling_({platform.mainLoop(), platform.readers(), platform.temperatureQueue(), platform.utilityQueue()},
                settings,
                {[this] { awake_.tick(platform_.readers().clock->now()); }, [this] { readingsChanged(); },
                 [this] { widgets_.writeWidgetSnapshot(WidgetPublisher::Force::yes); },
                 [this] { return dashboard_.wantsProcesses(); },
                 [this](ProcessScan scan) { dashboard_.updateProcesses(std::move(scan)); }}),
      widgets_({platform.bundleInfo(), *platform.readers().clock, platform.widgetCenter(), platform.utilityQueue(),
                platform.mainLoop()},
               {settings, sampling_.readings(), usage_.states()}, widgets == Widgets::published,
               [this] { preferences_.update(); }),
      updateAlerts_(toolkit_, platform.mainLoop(), [this] { dashboard_.close(); }),
      updater_(
          platform.bundleInfo(), [this](const UpdateFeed& feed) { return platform_.makeUpdater(feed, updateAlerts_); },
          updateAlerts_),
      dashboard_({toolkit_, platform.mainLoop(), *platform.readers().clock, platform.dates(), platform.workspace()},
                 {settings, sampling_.readings(), awake_, usage_.states()}, dashboardCallbacks()),
      preferences_({toolkit_, settings, platform.bundleInfo(), platform.loginItem()}, preferencesCallbacks()),
      statusItems_(platform.statusBar(), platform.mainLoop(), settings,
                   {[this](StatusItemKind kind) { return contentFor(kind); },
                    [this](StatusItemKind kind, const StatusClick& click) { statusClicked(kind, click); },
                    [this] { return statusMenu(); }, [this] { dashboard_.close(); },
                    [this] { return sleeping_ || dashboard_.visible(); }}) {}

Dashboard::Callbacks AppDelegate::dashboardCallbacks() {
  return {
      [this] { tabChanged(); },
      [this] { openSettings(); },
      [this] { openSettings(SettingsPage::usage); },
      [this] { quit(); },
      [this] { return statusItems_.knownFrames(); },
      [this](std::optional<AwakeManager::Time> end) { toggleAwake(end); },
      [this](bool on) { keepDisplayOn(on); },
      [this] {
        applyAwakeRules();
        preferences_.update();
      },
      [this] { turnDisplayOff(); },
      [this] { awake_.extend(kExtension); },
      [this] { usage_.refresh(kAllUsageProviders, UsageRequest::manual); },
  };
}

Preferences::Callbacks AppDelegate::preferencesCallbacks() {
  return {
      [this](const SettingsChange& change) { settingsChanged(change); },
      [this] { toggleLogin(); },
      [this] { checkForUpdates(); },
      [this] {
        updater_.toggleAutomaticChecks();
        preferences_.update();
      },
      [this] { enableClaudeDesktop(); },
      [this] { return updater_.automaticallyChecksForUpdates(); },
      [this] { return widgets_.widgetMessage(); },
  };
}

void AppDelegate::applicationDidFinishLaunching() {
  applyAwakeRules();
  awake_.onChange = [this] { awakeChanged(); };
  usage_.onChange = [this] { usageChanged(); };
  configureUsage();
  usage_.refresh(kAllUsageProviders, UsageRequest::automatic);
  updater_.start();
  statusItems_.configure();
  sampling_.tick();
  sampling_.startTimer();
  didFinishLaunching_ = true;
  if (const auto destination = std::exchange(pendingDestination_, std::nullopt)) {
    platform_.mainLoop().post([this, destination] { openDestination(*destination); });
  }
  sleepObservation_ = platform_.systemSleep().observe([this] { willSleep(); }, [this] { didWake(); });
  // A log-out or a shutdown cannot wait for an answer.
  terminationObservation_ = platform_.termination().observe([this] { platform_.mainLoop().quit(); });
}

void AppDelegate::applicationShouldTerminate(QuitDecision decided) {
  if (awake_.isActive()) {
    confirmEndingAwakeSession(std::move(decided));
  } else {
    decided(true);
  }
}

void AppDelegate::applicationWillTerminate() {
  sampling_.stopTimer();
  statusItems_.stopRotation();
  usage_.stop();
  awake_.stopByUser();
  sleepObservation_.reset();
  terminationObservation_.reset();
}

void AppDelegate::activate() {
  if (const auto first = statusItems_.firstItem()) openDashboard(*first, std::nullopt);
}

void AppDelegate::open(const std::vector<std::string>& links) {
  const auto destination = lastWidgetDestination(links);
  if (!destination) return;
  if (didFinishLaunching_) {
    openDestination(*destination);
  } else {
    pendingDestination_ = destination;
  }
}

void AppDelegate::openDestination(WidgetDestination destination) {
  if (const auto first = statusItems_.firstItem()) openDashboard(*first, tabFor(destination));
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
  awake_.checkDeadline(platform_.readers().clock->now());
  awake_.checkBattery();
  sampling_.didWake();
  statusItems_.restartRotation();
}

void AppDelegate::openSettings() { openSettings(std::nullopt); }

void AppDelegate::openSettings(std::optional<SettingsPage> page) {
  dashboard_.close();
  (void)preferences_.open(page);
}

void AppDelegate::checkForUpdates() { updater_.checkForUpdates(); }

void AppDelegate::toggleLogin() {
  auto& login = platform_.loginItem();
  const auto status = login.status();
  if (status == LoginItemStatus::requiresApproval) {
    login.openSystemSettings();
    return;
  }
  const auto done = status == LoginItemStatus::enabled ? login.unregisterItem() : login.registerItem();
  if (done) return;
  showNotice("Couldn’t update launch at login",
             "Keep Nimbo in Applications before enabling launch at login. " + done.error().description);
}

void AppDelegate::showNotice(const std::string& title, const std::string& text) {
  auto* const interface = toolkit_.interface();
  if (interface == nullptr) return;
  notice_ = interface->showAlert({title, text, {"OK"}}, [this](std::size_t) { notice_.reset(); });
}

// Applications learn when they start that somebody wants to look, so that comes first.
void AppDelegate::enableClaudeDesktop() {
  if (std::exchange(enablingClaudeDesktop_, true)) return;
  auto& accessibility = platform_.usageServices().accessibility;
  platform_.utilityQueue().async([this, &accessibility, &loop = platform_.mainLoop()] {
    accessibility.requestTrust();
    loop.post([this] {
      enablingClaudeDesktop_ = false;
      if (platform_.workspace().openApplication(kClaudeDesktop)) return;
      showNotice("Claude Desktop couldn’t be opened", "Open it yourself, then leave its Settings → Usage page open.");
    });
  });
}

void AppDelegate::settingsChanged(const SettingsChange& change) {
  switch (change.kind) {
    case SettingsChange::Kind::display:
      keepDisplayOn(change.on);
      return;
    case SettingsChange::Kind::monitors:
      monitorsChanged();
      return;
    case SettingsChange::Kind::appearance:
      statusItems_.refresh();
      return;
    case SettingsChange::Kind::interval:
      sampling_.tick();
      sampling_.startTimer();
      return;
    case SettingsChange::Kind::usage:
      usageSettingsChanged();
      return;
    case SettingsChange::Kind::awakeRules:
      applyAwakeRules();
      return;
    case SettingsChange::Kind::presentation:
      statusItems_.configure();
      return;
  }
}

void AppDelegate::monitorsChanged() {
  statusItems_.configure();
  sampling_.monitorsChanged();
  widgets_.writeWidgetSnapshot(WidgetPublisher::Force::yes);
}

void AppDelegate::quit() {
  applicationShouldTerminate([this](bool quit) {
    if (quit) platform_.mainLoop().quit();
  });
}

void AppDelegate::showQuitAlert(QuitDecision decided) {
  dashboard_.close();
  if (quitAlert_) {
    // The answer to the question that stands is for whoever asked it.
    quitAlert_->present();
    decided(false);
    return;
  }
  auto* const interface = toolkit_.interface();
  if (interface == nullptr) {
    // Nobody can be asked, and the user said so.
    decided(true);
    return;
  }
  quitAlert_ = interface->showAlert({"Keep Awake is running",
                                     "Quitting or installing an update ends this session. Your Mac may sleep "
                                     "afterward.",
                                     {"Keep Running", "End Session & Quit"}},
                                    [this, decided = std::move(decided)](std::size_t button) {
                                      const auto answer = decided;  // goes with the alert
                                      quitAlert_.reset();
                                      answer(button == 1);
                                    });
}

void AppDelegate::statusClicked(StatusItemKind kind, const StatusClick& click) {
  if (click.alternate) {
    quickTimedSession();
    return;
  }
  if (dashboard_.visible()) {
    dashboard_.close();
    return;
  }
  const auto item = statusItems_.item(kind);
  if (item && dashboard_.justClosedBy(*item)) return;
  openDashboard(kind, tabOf(kind));
}

void AppDelegate::openDashboard(StatusItemKind kind, std::optional<DashboardTab> tab) {
  if (!dashboard_.open(statusItems_.item(kind), statusItems_.knownFrame(kind), tab)) return;
  tabChanged();
  statusItems_.restartRotation();
}

bool AppDelegate::loadDashboardOffscreen() {
  if (!dashboard_.loadOffscreen(DashboardTab::memory)) return false;
  sampling_.startProcessScan(SamplingLoop::Throttle::ignore);
  return true;
}

StatusItemContent AppDelegate::contentFor(StatusItemKind kind) const {
  const auto& readings = sampling_.readings();
  switch (kind) {
    case StatusItemKind::ai: {
      const auto now = platform_.readers().clock->now();
      return usageItemContent(menuGauges(settings_, usage_.states(), now, platform_.dates()),
                              settings_.aiMenuRemaining(), now);
    }
    case StatusItemKind::memory:
      return memoryItemContent(readings.memory, readings.memoryFailed, settings_.showChart());
    case StatusItemKind::awake:
      return awakeItemContent(awake_.isActive());
    case StatusItemKind::compact:
      break;
  }
  return compactItemContent(awake_.isActive());
}

StatusMenu AppDelegate::statusMenu() {
  StatusMenuActions actions;
  actions.quickToggleAwake = [this] { quickToggleAwake(); };
  actions.openSettings = [this] { openSettings(); };
  actions.checkForUpdates = [this] { checkForUpdates(); };
  actions.quit = [this] { quit(); };
  return makeStatusMenu(actions, awake_.isActive() ? AwakeSession::running : AwakeSession::off);
}

// Comes with every tick, which is also when a provider may be due and the countdowns go on. A provider
// that was switched on by hand in the settings file is found here, too.
void AppDelegate::readingsChanged() {
  configureUsage();
  usage_.refresh(kAllUsageProviders, UsageRequest::automatic);
  widgets_.writeWidgetSnapshot(WidgetPublisher::Force::no);
  statusItems_.refresh();
  dashboard_.updateReadings();
  dashboard_.updateUsage();
}

void AppDelegate::tabChanged() {
  const auto tab = dashboard_.selectedTab();
  if (!tab) return;
  settings_.setLastDashboardTab(*tab);
  sampling_.startProcessScan(SamplingLoop::Throttle::ignore);
}

void AppDelegate::awakeChanged() {
  statusItems_.refresh();
  dashboard_.updateAwake();
}

void AppDelegate::usageChanged() {
  statusItems_.refresh();
  dashboard_.updateUsage();
  // What a read brought must not reach the widgets five minutes late.
  const auto refreshing = [](const auto& state) { return state.second.isRefreshing; };
  if (std::ranges::none_of(usage_.states(), refreshing)) widgets_.writeWidgetSnapshot(WidgetPublisher::Force::yes);
}

void AppDelegate::startAwake(std::optional<AwakeManager::Time> end) {
  awake_.start(end, settings_.awakeDisplayOn(), platform_.readers().clock->now());
}

void AppDelegate::toggleAwake(std::optional<AwakeManager::Time> end) {
  awake_.isActive() ? awake_.stopByUser() : startAwake(end);
}

void AppDelegate::quickToggleAwake() { toggleAwake(std::nullopt); }

void AppDelegate::quickTimedSession() {
  // A date that was picked on the page is not kept, so that choice means what the page suggests.
  const auto now = platform_.readers().clock->now();
  toggleAwake(sessionEnd(settings_.awakeDuration(), clampedCustomMinutes(settings_.awakeCustomMinutes()),
                         suggestedEnd(now), now));
}

void AppDelegate::keepDisplayOn(bool on) {
  if (awake_.setKeepDisplayOn(on)) settings_.setAwakeDisplayOn(on);
  awakeChanged();
  preferences_.update();
}

void AppDelegate::toggleDisplayMode() { keepDisplayOn(!settings_.awakeDisplayOn()); }

void AppDelegate::turnDisplayOff() { awake_.turnDisplayOff(); }

void AppDelegate::configureUsage() {
  for (const auto provider : kAllUsageProviders) usage_.setEnabled(provider, settings_.usageEnabled(provider));
}

void AppDelegate::usageSettingsChanged() {
  std::vector<UsageProvider> added;
  for (const auto provider : kAllUsageProviders) {
    const auto state = usage_.states().find(provider);
    const bool enabled = state != usage_.states().end() && state->second.enabled;
    if (settings_.usageEnabled(provider) && !enabled) added.push_back(provider);
  }
  configureUsage();
  usage_.refresh(added, UsageRequest::manual);
  usage_.refresh(kAllUsageProviders, UsageRequest::automatic);
}

void AppDelegate::applyAwakeRules() { awake_.setRules({settings_.awakeOnlyOnPower(), settings_.awakeBatteryFloor()}); }

}  // namespace nimbo
