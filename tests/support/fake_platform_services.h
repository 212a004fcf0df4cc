// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/mac_wording.h"
#include "platform/platform_services.h"
#include "remote_control/remote_control.h"
#include "support/fake_accessibility.h"
#include "support/fake_assertion_client.h"
#include "support/fake_clock.h"
#include "support/fake_dates.h"
#include "support/fake_display_power.h"
#include "support/fake_host_statistics.h"
#include "support/fake_http_client.h"
#include "support/fake_login_item.h"
#include "support/fake_main_loop.h"
#include "support/fake_network.h"
#include "support/fake_own_process.h"
#include "support/fake_power_sources.h"
#include "support/fake_process_table.h"
#include "support/fake_pseudo_terminals.h"
#include "support/fake_secret_files.h"
#include "support/fake_status_bar.h"
#include "support/fake_temperature_sensor.h"
#include "support/fake_tool_files.h"
#include "support/fake_updater.h"
#include "support/fake_user_defaults.h"
#include "support/fake_widget_center.h"
#include "support/fake_work_queue.h"
#include "support/fake_workspace.h"

namespace nimbo {

class FakeSystemSleep final : public SystemSleep {
 public:
  [[nodiscard]] Subscription observe(std::function<void()> willSleep, std::function<void()> didWake) override {
    willSleep_ = std::move(willSleep);
    didWake_ = std::move(didWake);
    return Subscription([this] { willSleep_ = didWake_ = nullptr; });
  }

  void sleep() {
    if (willSleep_) willSleep_();
  }
  void wake() {
    if (didWake_) didWake_();
  }
  [[nodiscard]] bool observed() const { return static_cast<bool>(willSleep_); }

 private:
  std::function<void()> willSleep_;
  std::function<void()> didWake_;
};

class FakeTermination final : public Termination {
 public:
  [[nodiscard]] Subscription observe(std::function<void(Cause)> requested) override {
    requested_ = std::move(requested);
    return Subscription([this] { requested_ = nullptr; });
  }
  void request(Cause cause = Cause::request) const {
    const auto requested = requested_;
    if (requested) requested(cause);
  }

 private:
  std::function<void(Cause)> requested_;
};

class FakeRemoteControl final : public RemoteControl {
 public:
  void usageChanged() override { ++usageChanges; }
  void readingsChanged() override { ++readingsChanges; }
  void offer(RemoteControlHandlers given) override { handlers = std::move(given); }
  void awakeChanged() override { ++changes; }

  RemoteControlHandlers handlers;
  int changes = 0;
  int usageChanges = 0;
  int readingsChanges = 0;
};

class FakeApplicationInstance final : public ApplicationInstance {
 public:
  [[nodiscard]] Result<InstanceRole, InstanceError> claim(const std::vector<std::string>& links,
                                                          ApplicationInstanceHandlers given) override {
    claimedWith = links;
    handlers = std::move(given);
    return role;
  }
  void release() override { handlers = {}; }

  std::vector<std::string> claimedWith;
  ApplicationInstanceHandlers handlers;
  Result<InstanceRole, InstanceError> role = InstanceRole::first;
};

/// Has none.
class FakeModuleLoader final : public ModuleLoader {
 public:
  [[nodiscard]] Result<void*, ModuleError> symbol(const std::string& module, const char* /*symbol*/) override {
    return tl::unexpected(ModuleError{"no module " + module});
  }
};

/// A whole machine and desktop in memory; both clocks follow the main loop.
class FakePlatformServices final : public PlatformServices {
 public:
  FakePlatformServices() {
    auto ownClock = std::make_unique<FakeClock>();
    auto ownHost = std::make_unique<FakeHostStatistics>();
    clock = ownClock.get();
    terminals = std::make_unique<FakePseudoTerminals>(*clock);
    screens = std::make_unique<FakeAccessibility>(*clock);
    host = ownHost.get();
    readers_ = {std::move(ownClock), std::move(ownHost), [this] { return processes; },
                [this] {
                  ++sensorsMade;
                  auto sensor = std::make_unique<FakeTemperatureSensor>();
                  sensor->sensors = {celsius};
                  return sensor;
                }};
    loop.onAdvance = [this](std::chrono::milliseconds step) { clock->advance(step); };
    loop.setWallClock(clock->now());
  }

  /// Sets the wall clock, forwards or back, as the user or the network does.
  void setWallClock(std::chrono::system_clock::time_point now) {
    clock->setNow(now);
    loop.setWallClock(now);
  }

  /// The machine is away for that long; the power service tells before and after through `power`.
  void sleep(std::chrono::milliseconds duration) { setWallClock(clock->now() + duration); }

  [[nodiscard]] SystemReaders& readers() override { return readers_; }
  [[nodiscard]] MainLoop& mainLoop() override { return loop; }
  [[nodiscard]] Termination& termination() override { return terminationRequests; }
  [[nodiscard]] WorkQueue& temperatureQueue() override { return temperatures; }
  [[nodiscard]] WorkQueue& utilityQueue() override { return utilities; }
  [[nodiscard]] const BundleInfo& bundleInfo() override { return bundle; }
  [[nodiscard]] const Wording& wording() override { return words; }
  [[nodiscard]] UserDefaults& userDefaults() override { return defaults; }
  [[nodiscard]] UserDefaultsDomains& userDefaultsDomains() override { return domains; }
  [[nodiscard]] std::unique_ptr<UserDefaults> makeUserDefaults(const std::string& domain) override {
    suites.push_back(domain);
    return keepsOtherDomains ? std::make_unique<FakeUserDefaults>(domains, domain) : nullptr;
  }
  [[nodiscard]] WindowsStarter windowsStarter() override { return {}; }
  [[nodiscard]] ModuleLoader& modules() override { return noModules; }
  [[nodiscard]] ApplicationInstance& applicationInstance() override { return instance; }
  [[nodiscard]] RemoteControl& remoteControl() override { return remote; }
  [[nodiscard]] StatusBar& statusBar() override { return bar; }
  [[nodiscard]] SystemSleep& systemSleep() override { return power; }
  [[nodiscard]] Workspace& workspace() override { return desktop; }
  [[nodiscard]] AssertionClient& assertionClient() override { return assertions; }
  [[nodiscard]] PowerSources& powerSources() override { return batteries; }
  [[nodiscard]] DisplayPower& displayPower() override { return display; }
  [[nodiscard]] const Dates& dates() override { return utcDates; }
  [[nodiscard]] std::optional<ResourceUsage> ownUsage() const override { return self.usage(); }
  [[nodiscard]] UsageServices usageServices() override {
    return {
        network,    connection, secretFiles, toolFiles,
        *terminals, *screens,   claude,      [this](std::function<void()> work) { background.async(std::move(work)); },
        user};
  }
  [[nodiscard]] LoginItem& loginItem() override { return login; }
  [[nodiscard]] WidgetCenter& widgetCenter() override { return widgets; }
  [[nodiscard]] UpdateSource updateSource(const UpdateFeed& feed, UpdateWindows& /*windows*/) override {
    updateFeeds.push_back(feed);
    if (updateSessions) return *updateSessions;
    auto made = std::make_unique<FakeUpdater>();
    updater = made.get();
    return made;
  }
  [[nodiscard]] bool end() override { return true; }

  FakeModuleLoader noModules;
  FakeClock* clock = nullptr;
  FakeHostStatistics* host = nullptr;
  std::shared_ptr<FakeProcessTable> processes = std::make_shared<FakeProcessTable>();
  std::optional<double> celsius = 50;
  int sensorsMade = 0;

  FakeMainLoop loop;
  FakeTermination terminationRequests;
  FakeWorkQueue temperatures;
  FakeWorkQueue utilities;
  BundleInfo bundle{"com.quellwerk.Nimbo", {}, {}, {}, {}, {}};
  Wording words = macWording();
  FakeUserDefaultsDomains domains;
  FakeUserDefaults defaults{domains, "com.quellwerk.Nimbo"};
  bool keepsOtherDomains = true;
  std::vector<std::string> suites;  ///< names of the other domains that were asked for
  FakeApplicationInstance instance;
  FakeRemoteControl remote;
  FakeStatusBar bar;
  FakeSystemSleep power;
  FakeWorkspace desktop;
  FakeAssertionClient assertions;
  FakePowerSources batteries;
  FakeDisplayPower display;
  FakeDates utcDates;
  FakeOwnProcess self;
  FakeHttpClient network;
  FakeNetwork connection;
  FakeSecretFiles secretFiles;
  FakeToolFiles toolFiles;
  std::unique_ptr<FakePseudoTerminals> terminals;
  std::unique_ptr<FakeAccessibility> screens;
  FakeWorkQueue claude;
  FakeWorkQueue background;
  FakeLoginItem login;
  FakeWidgetCenter widgets;
  std::vector<UpdateFeed> updateFeeds;               ///< that a source was asked for
  std::optional<UpdateSessionMaker> updateSessions;  ///< the source instead of an updater
  FakeUpdater* updater = nullptr;                    ///< the last one made
  UserSurroundings user{"/home/u", "/home/u/.cache", "/usr/bin", {}, {}, [] { return std::string("UTC"); }};

 private:
  SystemReaders readers_;
};

}  // namespace nimbo
