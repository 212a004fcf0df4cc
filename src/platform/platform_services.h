// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/accessibility.h"
#include "platform/application_instance.h"
#include "platform/assertion_client.h"
#include "platform/bundle.h"
#include "platform/clock.h"
#include "platform/display_power.h"
#include "platform/foreground_programs.h"
#include "platform/host_statistics.h"
#include "platform/http_client.h"
#include "platform/login_item.h"
#include "platform/main_loop.h"
#include "platform/power_sources.h"
#include "platform/process_table.h"
#include "platform/pseudo_terminal.h"
#include "platform/status_bar.h"
#include "platform/system_events.h"
#include "platform/temperature_sensor.h"
#include "platform/update_session.h"
#include "platform/user_defaults.h"
#include "platform/user_files.h"
#include "platform/widget_center.h"
#include "platform/windows_process.h"
#include "platform/wording.h"
#include "platform/workspace.h"

namespace nimbo {

// What they speak of is the program's own: remote_control/remote_control.h.
class RemoteControl;
class RunningProgram;

/// Makes a sensor on the queue that will read it.
using TemperatureSensorMaker = std::function<std::unique_ptr<TemperatureSensor>()>;

/// Makes a table that keeps what it knows, and files open, until it goes.
using ProcessTableMaker = std::function<std::shared_ptr<ProcessTable>()>;

/// What it takes to read the machine: all that the console report needs.
struct SystemReaders {
  std::unique_ptr<Clock> clock;
  std::unique_ptr<HostStatistics> hostStatistics;
  ProcessTableMaker makeProcessTable;
  TemperatureSensorMaker makeTemperatureSensor;
};

/// What the programs of this user find when they start.
struct UserSurroundings {
  std::filesystem::path home;
  std::filesystem::path caches;
  std::string searchPath;                ///< PATH
  std::string codexHome;                 ///< CODEX_HOME; usually empty
  std::vector<std::string> environment;  ///< all of it, "NAME=value"
  /// An identifier such as "Europe/Berlin" or the path of a zone file; asked anew, as people travel.
  std::function<std::string()> localZone;
};

/// What reading AI allowances takes of the system.
struct UsageServices {
  HttpClient& http;
  Network& network;
  const SecretFiles& secretFiles;
  const ToolFiles& toolFiles;
  PseudoTerminals& terminals;
  Accessibility& accessibility;
  WorkQueue& claudeQueue;  ///< serial, for jobs of half a minute
  /// Runs blocking work on a thread of low priority of its own.
  std::function<void(std::function<void()>)> background;
  const UserSurroundings& user;
};

/// The operating system's services for the running program. They live as long as this object and
/// are used on the main thread unless their own header says otherwise.
class PlatformServices {
 public:
  virtual ~PlatformServices() = default;

  [[nodiscard]] virtual SystemReaders& readers() = 0;
  [[nodiscard]] virtual MainLoop& mainLoop() = 0;
  [[nodiscard]] virtual Termination& termination() = 0;
  [[nodiscard]] virtual WorkQueue& temperatureQueue() = 0;  ///< serial
  [[nodiscard]] virtual WorkQueue& utilityQueue() = 0;      ///< serial
  [[nodiscard]] virtual const BundleInfo& bundleInfo() = 0;
  [[nodiscard]] virtual const Wording& wording() = 0;
  [[nodiscard]] virtual UserDefaults& userDefaults() = 0;  ///< the application's own domain
  [[nodiscard]] virtual UserDefaultsDomains& userDefaultsDomains() = 0;
  /// Another domain of that name, or null when it cannot be kept.
  [[nodiscard]] virtual std::unique_ptr<UserDefaults> makeUserDefaults(const std::string& domain) = 0;
  [[nodiscard]] virtual ApplicationInstance& applicationInstance() = 0;
  [[nodiscard]] virtual RemoteControl& remoteControl() = 0;
  [[nodiscard]] virtual StatusBar& statusBar() = 0;
  [[nodiscard]] virtual SystemSleep& systemSleep() = 0;
  [[nodiscard]] virtual Workspace& workspace() = 0;
  [[nodiscard]] virtual AssertionClient& assertionClient() = 0;
  [[nodiscard]] virtual PowerSources& powerSources() = 0;
  [[nodiscard]] virtual DisplayPower& displayPower() = 0;
  [[nodiscard]] virtual const Dates& dates() = 0;
  /// What this process has cost so far; absent when the system does not tell.
  [[nodiscard]] virtual std::optional<ResourceUsage> ownUsage() const = 0;
  /// Empty on a system whose windows live in this process.
  [[nodiscard]] virtual WindowsStarter windowsStarter() = 0;
  [[nodiscard]] virtual ModuleLoader& modules() = 0;
  [[nodiscard]] virtual UsageServices usageServices() = 0;
  [[nodiscard]] virtual LoginItem& loginItem() = 0;
  [[nodiscard]] virtual WidgetCenter& widgetCenter() = 0;
  /// `windows` outlives what it gives.
  [[nodiscard]] virtual UpdateSource updateSource(const UpdateFeed& feed, UpdateWindows& windows) = 0;

  /// The last call, once nothing but work in the background uses these services: writes what is unsaved and waits 0.7 s
  /// at most for that work. False when some of it hangs. It still uses this object then, which must not be destroyed:
  /// such work ends with the process (`std::_Exit`).
  [[nodiscard]] virtual bool end() = 0;
};

// Implemented once per operating system.
[[nodiscard]] SystemReaders makeSystemReaders();
[[nodiscard]] std::unique_ptr<Accessibility> makeAccessibility();
[[nodiscard]] UserSurroundings userSurroundings();
[[nodiscard]] Wording systemWording();
[[nodiscard]] std::string programVersion();
[[nodiscard]] std::unique_ptr<RunningProgram> makeRunningProgram();
[[nodiscard]] std::unique_ptr<ForegroundPrograms> makeForegroundPrograms();
[[nodiscard]] std::unique_ptr<PlatformServices> makePlatformServices();

}  // namespace nimbo
