// SPDX-License-Identifier: MIT
#include <mach-o/dyld.h>
#include <signal.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <utility>

#include "platform/clock.h"
#include "platform/darwin/accessibility/ax_accessibility.h"
#include "platform/darwin/desktop/ns_application_instance.h"
#include "platform/darwin/desktop/ns_desktop.h"
#include "platform/darwin/display/pmset_display_power.h"
#include "platform/darwin/http/url_session_http_client.h"
#include "platform/darwin/loop/cf_main_loop.h"
#include "platform/darwin/loop/dispatch_termination.h"
#include "platform/darwin/loop/utility_thread.h"
#include "platform/darwin/machine/iokit_smc_service.h"
#include "platform/darwin/machine/libproc_processes.h"
#include "platform/darwin/machine/mach_host_statistics.h"
#include "platform/darwin/machine/sc_network.h"
#include "platform/darwin/power/iokit_assertion_client.h"
#include "platform/darwin/power/iokit_power_sources.h"
#include "platform/darwin/remote/local_remote_control.h"
#include "platform/darwin/settings/cf_bundle_info.h"
#include "platform/darwin/settings/cf_user_defaults.h"
#include "platform/darwin/terminal/kqueue_foreground_programs.h"
#include "platform/darwin/terminal/libproc_sessions.h"
#include "platform/darwin/tray/ns_status_bar.h"
#include "platform/darwin/update/framework_updater.h"
#include "platform/darwin/widgets/group_widget_center.h"
#include "platform/mac_wording.h"
#include "platform/platform_services.h"
#include "platform/posix/files/regular_file.h"
#include "platform/posix/files/user_surroundings.h"
#include "platform/posix/loop/dl_module_loader.h"
#include "platform/posix/loop/work_threads.h"
#include "platform/posix/terminal/local_tool_files.h"
#include "platform/posix/terminal/pty_terminals.h"
#include "system/temperature_sampler.h"

extern char** environ;

namespace nimbo {
namespace {

constexpr const char* kDomain = "com.quellwerk.Nimbo";

UserSurroundings surroundings() {
  const Environment environment = environmentOf(::environ);
  auto user = userSurroundings(environment, {});
  user.caches = user.home / "Library" / "Caches";
  return user;
}

/// In the application: Contents/PlugIns beside the folder of the program.
std::string moduleFolder() {
  std::array<char, 4096> path{};
  std::uint32_t size = path.size();
  if (::_NSGetExecutablePath(path.data(), &size) != 0) return {};
  std::error_code error;
  const auto program = std::filesystem::canonical(path.data(), error);
  return program.parent_path().parent_path() / "PlugIns";
}

class DarwinPlatformServices final : public PlatformServices {
 public:
  [[nodiscard]] SystemReaders& readers() override { return readers_; }
  [[nodiscard]] MainLoop& mainLoop() override { return loop_; }
  [[nodiscard]] Termination& termination() override { return termination_; }
  [[nodiscard]] WorkQueue& temperatureQueue() override { return threads_.temperature; }
  [[nodiscard]] WorkQueue& utilityQueue() override { return threads_.utility; }
  [[nodiscard]] const BundleInfo& bundleInfo() override { return bundleInfo_; }
  [[nodiscard]] const Wording& wording() override { return macWording(); }
  [[nodiscard]] UserDefaults& userDefaults() override { return *defaults_; }
  [[nodiscard]] UserDefaultsDomains& userDefaultsDomains() override { return domains_; }
  [[nodiscard]] std::unique_ptr<UserDefaults> makeUserDefaults(const std::string& domain) override {
    return std::make_unique<CfUserDefaults>(domain, threads_.background());
  }
  [[nodiscard]] ApplicationInstance& applicationInstance() override { return instance_; }
  [[nodiscard]] RemoteControl& remoteControl() override { return remoteControl_; }
  [[nodiscard]] StatusBar& statusBar() override { return statusBar_; }
  [[nodiscard]] SystemSleep& systemSleep() override { return *systemSleep_; }
  [[nodiscard]] Workspace& workspace() override { return *workspace_; }
  [[nodiscard]] AssertionClient& assertionClient() override { return assertionClient_; }
  [[nodiscard]] PowerSources& powerSources() override { return powerSources_; }
  [[nodiscard]] DisplayPower& displayPower() override { return displayPower_; }
  [[nodiscard]] const Dates& dates() override { return *dates_; }
  [[nodiscard]] std::optional<ResourceUsage> ownUsage() const override { return readOwnUsage(); }
  [[nodiscard]] WindowsStarter windowsStarter() override { return {}; }
  [[nodiscard]] ModuleLoader& modules() override { return modules_; }
  [[nodiscard]] UsageServices usageServices() override {
    return {*http_,         network_,        secretFiles_,          toolFiles_, terminals_,
            accessibility_, threads_.claude, threads_.background(), user_};
  }
  [[nodiscard]] LoginItem& loginItem() override { return *loginItem_; }
  [[nodiscard]] WidgetCenter& widgetCenter() override { return widgetCenter_; }
  // Feed and key it reads itself where the program has them from.
  [[nodiscard]] UpdateSource updateSource(const UpdateFeed& /*feed*/, UpdateWindows& /*windows*/) override {
    return makeFrameworkUpdater();
  }
  [[nodiscard]] bool end() override {
    defaults_.reset();
    return threads_.end();
  }

 private:
  // In order of dependence: what comes later uses what comes before and goes first.
  SystemReaders readers_ = makeSystemReaders();
  const BundleInfo bundleInfo_ = readBundleInfo();
  CfUserDefaultsDomains domains_;
  DlModuleLoader modules_{moduleFolder()};

  NsApplicationInstance instance_;
  CfMainLoop loop_{{NsApplicationInstance::run, NsApplicationInstance::stop}};
  DispatchTermination termination_;
  // AppKit does not come back from it: what is unsaved is written here.
  const Subscription sessionEnd_ = instance_.observeSessionEnd([this] {
    (void)end();
    std::_Exit(EXIT_SUCCESS);
  });
  LocalRemoteControl remoteControl_;
  NsStatusBar statusBar_;
  const std::unique_ptr<Workspace> workspace_ = makeNsWorkspace();
  const std::unique_ptr<SystemSleep> systemSleep_ = makeNsSystemSleep();
  const std::unique_ptr<LoginItem> loginItem_ = makeSmLoginItem();
  const std::unique_ptr<Dates> dates_ = makeNsDates();
  GroupWidgetCenter widgetCenter_{modules_};

  IokitAssertionClient assertionClient_;
  IokitPowerSources powerSources_;
  PmsetDisplayPower displayPower_{loop_};

  const UserSurroundings user_ = surroundings();
  const std::unique_ptr<HttpClient> http_ = makeUrlSessionHttpClient(loop_);
  ScNetwork network_{loop_};
  PlainSecretFiles secretFiles_;
  LocalToolFiles toolFiles_;
  PtyTerminals terminals_{libprocTerminalSystem()};
  AxAccessibility accessibility_{runningApplication};

  WorkThreads threads_{loop_, makeUtilityThread};
  std::optional<CfUserDefaults> defaults_{std::in_place, kDomain, threads_.background()};
};

}  // namespace

SystemReaders makeSystemReaders() {
  return {std::make_unique<SystemClock>(), std::make_unique<MachHostStatistics>(),
          [] { return std::make_shared<LibprocProcessTable>(); },
          []() -> std::unique_ptr<TemperatureSensor> {
            IokitSmcService controller;
            return std::make_unique<TemperatureSampler>(controller);
          }};
}

std::unique_ptr<Accessibility> makeAccessibility() { return std::make_unique<AxAccessibility>(runningApplication); }

UserSurroundings userSurroundings() { return surroundings(); }

Wording systemWording() { return macWording(); }

std::string programVersion() { return readBundleInfo().shortVersion.value_or("Development"); }

std::unique_ptr<RunningProgram> makeRunningProgram() {
  return std::make_unique<LocalRunningProgram>([](const std::vector<std::string>& links) {
    NsApplicationInstance here;
    const auto role = here.claim(links, {});
    return role && *role == InstanceRole::later;
  });
}

std::unique_ptr<ForegroundPrograms> makeForegroundPrograms() {
  return std::make_unique<KqueueForegroundPrograms>(::environ);
}

std::unique_ptr<PlatformServices> makePlatformServices() {
  // A careless launcher may have left the ends of children ignored; then nobody would keep their numbers for us.
  ::signal(SIGCHLD, SIG_DFL);
  return std::make_unique<DarwinPlatformServices>();
}

}  // namespace nimbo
