// SPDX-License-Identifier: MIT
#include <malloc.h>
#include <signal.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>

#include "platform/clock.h"
#include "platform/linux/accessibility/atspi_accessibility.h"
#include "platform/linux/bus/dbus_application_instance.h"
#include "platform/linux/bus/sd_bus_connection.h"
#include "platform/linux/bus/xdg_widget_center.h"
#include "platform/linux/desktop/desktop_application.h"
#include "platform/linux/desktop/linux_wording.h"
#include "platform/linux/desktop/locale_dates.h"
#include "platform/linux/desktop/plasma_colors.h"
#include "platform/linux/desktop/portal_workspace.h"
#include "platform/linux/desktop/xdg_login_item.h"
#include "platform/linux/display/desktop_display_power.h"
#include "platform/linux/display/display_modules.h"
#include "platform/linux/files/xdg_folders.h"
#include "platform/linux/http/module_http_client.h"
#include "platform/linux/loop/sd_event_main_loop.h"
#include "platform/linux/loop/signal_termination.h"
#include "platform/linux/loop/utility_thread.h"
#include "platform/linux/machine/hwmon_temperature_sensor.h"
#include "platform/linux/machine/procfs_host_statistics.h"
#include "platform/linux/machine/procfs_processes.h"
#include "platform/linux/machine/rtnetlink_network.h"
#include "platform/linux/power/desktop_assertion_client.h"
#include "platform/linux/power/logind_system_sleep.h"
#include "platform/linux/power/sysfs_power_sources.h"
#include "platform/linux/remote/dbus_remote_control.h"
#include "platform/linux/remote/dbus_running_program.h"
#include "platform/linux/settings/json_bundle_info.h"
#include "platform/linux/settings/json_user_defaults.h"
#include "platform/linux/terminal/pidfd_foreground_programs.h"
#include "platform/linux/terminal/session_processes.h"
#include "platform/linux/tray/panel_appearance.h"
#include "platform/linux/tray/sni_status_bar.h"
#include "platform/linux/update/update_module.h"
#include "platform/linux/windows/windows_launcher.h"
#include "platform/platform_services.h"
#include "platform/posix/files/regular_file.h"
#include "platform/posix/files/user_surroundings.h"
#include "platform/posix/loop/dl_module_loader.h"
#include "platform/posix/loop/work_threads.h"
#include "platform/posix/terminal/local_tool_files.h"
#include "platform/posix/terminal/pty_terminals.h"

namespace nimbo {
namespace {

constexpr const char* kDomain = "com.quellwerk.Nimbo";

std::string busAddressOf(const Environment& environment) {
  return sessionBusAddress(variable(environment, "DBUS_SESSION_BUS_ADDRESS"), variable(environment, "XDG_RUNTIME_DIR"));
}

UserSurroundings surroundingsFrom(const Environment& environment) {
  return userSurroundings(environment, xdgFolders(environment, accountHome()).cache);
}

Wording wordingFrom(const Environment& environment) {
  const auto folders = applicationFolders(environment, xdgFolders(environment, accountHome()));
  return linuxWording(variable(environment, "XDG_CURRENT_DESKTOP"), variable(environment, "PATH"), folders);
}

/// What the locale's dates follow, in the C library's own order.
std::string dateLocale(const Environment& environment) {
  for (const char* const name : {"LC_ALL", "LC_TIME", "LANG"}) {
    if (auto value = variable(environment, name); !value.empty()) return value;
  }
  return "C";
}

/// The X server's address in an X11 session. In a Wayland session that of its bridge for old programs
/// would be of no use: the screen is not that one's.
std::string x11Display(const Environment& environment) {
  return variable(environment, "WAYLAND_DISPLAY").empty() ? variable(environment, "DISPLAY") : std::string();
}

/// Where the Wayland compositor listens; its name is relative to the session's run-time folder unless
/// it is a whole path.
std::string waylandSocket(const Environment& environment) {
  std::string name = variable(environment, "WAYLAND_DISPLAY");
  if (name.empty() || name.front() == '/') return name;
  return variable(environment, "XDG_RUNTIME_DIR") + "/" + name;
}

/// Where this program lies. Only at the start: an upgrade takes it away.
std::filesystem::path executablePath() {
  std::error_code error;
  return std::filesystem::read_symlink("/proc/self/exe", error);
}

/// What log-in is to start: this program, or the one file that it was unpacked from.
std::filesystem::path programOf(const Environment& environment, const std::filesystem::path& executable) {
  const std::filesystem::path image = variable(environment, "APPIMAGE");
  return image.is_absolute() ? image : executable;
}

class LinuxPlatformServices final : public PlatformServices {
 public:
  [[nodiscard]] SystemReaders& readers() override { return readers_; }
  [[nodiscard]] MainLoop& mainLoop() override { return loop_; }
  [[nodiscard]] Termination& termination() override { return termination_; }
  [[nodiscard]] WorkQueue& temperatureQueue() override { return threads_.temperature; }
  [[nodiscard]] WorkQueue& utilityQueue() override { return threads_.utility; }
  [[nodiscard]] const BundleInfo& bundleInfo() override { return bundleInfo_; }
  [[nodiscard]] const Wording& wording() override { return wording_; }
  [[nodiscard]] UserDefaults& userDefaults() override { return *defaults_; }
  [[nodiscard]] UserDefaultsDomains& userDefaultsDomains() override { return domains_; }
  [[nodiscard]] std::unique_ptr<UserDefaults> makeUserDefaults(const std::string& domain) override {
    return std::make_unique<JsonUserDefaults>(folders_.config, domain, defaultsServices());
  }
  [[nodiscard]] ApplicationInstance& applicationInstance() override { return instance_; }
  [[nodiscard]] RemoteControl& remoteControl() override { return remoteControl_; }
  [[nodiscard]] StatusBar& statusBar() override { return statusBar_; }
  [[nodiscard]] SystemSleep& systemSleep() override { return systemSleep_; }
  [[nodiscard]] Workspace& workspace() override { return workspace_; }
  [[nodiscard]] AssertionClient& assertionClient() override { return assertionClient_; }
  [[nodiscard]] PowerSources& powerSources() override { return powerSources_; }
  [[nodiscard]] DisplayPower& displayPower() override { return displayPower_; }
  [[nodiscard]] const Dates& dates() override { return dates_; }
  [[nodiscard]] std::optional<ResourceUsage> ownUsage() const override { return readOwnUsage(windows_.process()); }
  [[nodiscard]] WindowsStarter windowsStarter() override {
    return [this](DisplayNeed need, WindowsProcess::Events events) { return windows_.start(need, std::move(events)); };
  }
  [[nodiscard]] ModuleLoader& modules() override { return modules_; }
  [[nodiscard]] UsageServices usageServices() override {
    return {http_,          network_,        secretFiles_,          toolFiles_, terminals_,
            accessibility_, threads_.claude, threads_.background(), user_};
  }
  [[nodiscard]] LoginItem& loginItem() override { return loginItem_; }
  [[nodiscard]] WidgetCenter& widgetCenter() override { return widgetCenter_; }
  [[nodiscard]] UpdateSource updateSource(const UpdateFeed& feed, UpdateWindows& windows) override {
    const ProgramVersion installed{bundleInfo_.version.value_or(""), bundleInfo_.shortVersion.value_or("Development")};
    const UpdateSetup setup{loop_, http_, threads_.utility, workspace_, windows, feed, installed};
    return updateSessionFromModule(modules_, setup, {user_.home, folders_.config});
  }
  [[nodiscard]] bool end() override {
    defaults_.reset();
    return threads_.end();
  }

 private:
  // Not on the utility queue, whose other work may take seconds: a setting is to be on disk at once.
  JsonUserDefaults::Services defaultsServices() { return {loop_, threads_.background()}; }

  // In order of dependence: what comes later uses what comes before and goes first.
  const Environment environment_ = environmentOf(::environ);
  const std::filesystem::path executable_ = executablePath();
  const std::filesystem::path prefix_ = executable_.parent_path().parent_path();  // /usr, or a build folder
  const XdgFolders folders_ = xdgFolders(environment_, accountHome());
  const std::string desktop_ = variable(environment_, "XDG_CURRENT_DESKTOP");
  const std::string sessionAddress_ = busAddressOf(environment_);
  const std::string systemAddress_ = systemBusAddress(variable(environment_, "DBUS_SYSTEM_BUS_ADDRESS"));

  SystemReaders readers_ = makeSystemReaders();
  BundleInfo bundleInfo_ = readBundleInfo(prefix_ / "share" / "nimbo" / "Info.json");
  const Wording wording_ = wordingFrom(environment_);
  JsonUserDefaultsDomains domains_{folders_.config};
  DlModuleLoader modules_{(prefix_ / "lib" / "nimbo").string()};

  SdEventMainLoop loop_;
  SignalTermination termination_{loop_};
  // A session that has lost its bus is over.
  SdBusConnection session_{loop_.event(), sessionAddress_, [this] { loop_.quit(); }};
  DbusApplicationInstance instance_{session_};
  DbusRemoteControl remoteControl_{session_.get()};
  PlasmaColors plasmaColors_{loop_, {folders_.config, dataFolders(environment_, folders_)}};
  PortalWorkspace workspace_{loop_,
                             session_.get(),
                             {desktop_, variable(environment_, "PATH"), variable(environment_, "GTK_THEME"),
                              applicationFolders(environment_, folders_), &plasmaColors_}};
  XdgLoginItem loginItem_{
      {folders_.config, programOf(environment_, executable_), desktop_, variable(environment_, "PATH")}};
  XdgWidgetCenter widgetCenter_{session_.get(), folders_.data};
  PanelAppearance panel_{{session_.get(), workspace_, plasmaColors_}, desktop_};
  SniStatusBar statusBar_{loop_, {session_.get(), sessionAddress_}, desktop_, panel_};
  LogindSystemSleep systemSleep_{{loop_.event(), loop_}, systemAddress_};

  const X11ScreenMaker makeX11Screen_ = x11ScreenFromModule(modules_, x11Display(environment_));
  DesktopAssertionClient assertionClient_{{{loop_.event(), loop_}, sessionAddress_, systemAddress_, makeX11Screen_},
                                          systemSleep_.bus()};
  DesktopDisplayPower displayPower_{
      loop_,
      session_.get(),
      desktop_,
      {makeX11Screen_, waylandDisplayFromModule(modules_, loop_, waylandSocket(environment_))}};
  SysfsPowerSources powerSources_{loop_.event()};
  LocaleDates dates_{dateLocale(environment_)};
  WindowsLauncher windows_{loop_, prefix_ / "lib" / "nimbo" / "nimbo-windows"};

  const UserSurroundings user_ = surroundingsFrom(environment_);
  ModuleHttpClient http_{
      loop_, modules_, {"Nimbo", variable(environment_, "SSL_CERT_FILE"), variable(environment_, "SSL_CERT_DIR")}};
  RtnetlinkNetwork network_{loop_};
  PlainSecretFiles secretFiles_;
  LocalToolFiles toolFiles_;
  PtyTerminals terminals_{procfsTerminalSystem()};
  AtspiAccessibility accessibility_{sessionAddress_};

  WorkThreads threads_{loop_, makeUtilityThread};
  std::optional<JsonUserDefaults> defaults_{std::in_place, folders_.config, kDomain, defaultsServices()};
};

}  // namespace

SystemReaders makeSystemReaders() {
  return {std::make_unique<SystemClock>(), std::make_unique<ProcfsHostStatistics>(),
          [] { return std::make_shared<ProcfsProcessTable>(); },
          [] { return std::make_unique<HwmonTemperatureSensor>(); }};
}

std::unique_ptr<Accessibility> makeAccessibility() {
  return std::make_unique<AtspiAccessibility>(busAddressOf(environmentOf(::environ)));
}

UserSurroundings userSurroundings() { return surroundingsFrom(environmentOf(::environ)); }

Wording systemWording() { return wordingFrom(environmentOf(::environ)); }

std::string programVersion() {
  const auto prefix = executablePath().parent_path().parent_path();
  return readBundleInfo(prefix / "share" / "nimbo" / "Info.json").shortVersion.value_or("Development");
}

std::unique_ptr<RunningProgram> makeRunningProgram() {
  return std::make_unique<DbusRunningProgram>(busAddressOf(environmentOf(::environ)));
}

std::unique_ptr<ForegroundPrograms> makeForegroundPrograms() {
  return std::make_unique<PidfdForegroundPrograms>(::environ);
}

std::unique_ptr<PlatformServices> makePlatformServices() {
  // A careless launcher may have left the ends of children ignored; then nobody would keep their numbers for us.
  ::signal(SIGCHLD, SIG_DFL);
#ifdef __GLIBC__
  // Threads that come and go would each leave a heap behind.
  ::mallopt(M_ARENA_MAX, 1);
  // What a picture for the tray needs for a moment goes back to the kernel; nothing that large is needed often.
  ::mallopt(M_MMAP_THRESHOLD, 16 * 1024);
#endif
  return std::make_unique<LinuxPlatformServices>();
}

}  // namespace nimbo
