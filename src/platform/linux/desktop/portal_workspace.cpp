// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/portal_workspace.h"

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <utility>

#include "base/text.h"
#include "platform/linux/bus/sd_bus_calls.h"
#include "platform/linux/desktop/desktop_application.h"
#include "platform/linux/desktop/desktop_programs.h"

namespace nimbo {
namespace {

constexpr const char* kPortal = "org.freedesktop.portal.Desktop";
constexpr const char* kPath = "/org/freedesktop/portal/desktop";
constexpr const char* kInterface = "org.freedesktop.portal.Settings";
constexpr const char* kNamespace = "org.freedesktop.appearance";
constexpr const char* kKey = "color-scheme";

// "Adwaita-dark", "Breeze-Dark", and "Adwaita:dark" as GTK_THEME has it.
bool isDarkTheme(std::string_view name) {
  const std::string theme = lowerCased(name);
  return theme.ends_with("-dark") || theme.ends_with(":dark");
}

// RFC 8089, of an absolute path.
std::string fileUri(const std::filesystem::path& file) { return "file://" + percentEncoded(file.native(), "-._~/"); }

// Where an application of that bus name has its object, by freedesktop.org's rules for desktop entries.
std::string objectPath(const std::string& busName) {
  std::string path = "/" + busName;
  std::replace(path.begin(), path.end(), '.', '/');
  std::replace(path.begin(), path.end(), '-', '_');
  return path;
}

}  // namespace

PortalWorkspace::PortalWorkspace(MainLoop& loop, sd_bus* session, Setup setup)
    : session_(session), setup_(std::move(setup)), themeName_(setup_.gtkTheme), programs_(loop) {
  const BusSignal settingChanged{kPortal, kPath, kInterface, "SettingChanged", {kNamespace, kKey}};
  settingChanged_ = addMatch(session, matchRule(settingChanged), [this](sd_bus_message* signal) {
    if (sd_bus_message_skip(signal, "ss") >= 0) setColorScheme(signal);
  });
  if (desktopIs(setup_.desktop, "XFCE")) {
    xfceTheme_ = followXfconf(session, "xsettings", "/Net/ThemeName", [this](sd_bus_message* value) {
      const char* name = nullptr;
      const bool isSet = value != nullptr && sd_bus_message_read(value, "v", "s", &name) > 0;
      themeName_ = isSet ? name : setup_.gtkTheme;
      update();
    });
  }
  if (desktopIs(setup_.desktop, "KDE") && setup_.plasma != nullptr) {
    plasmaFiles_ = setup_.plasma->observe([this] { update(); });
  }
  update();
  if (session == nullptr) return;
  // Asked in any case at first, which may start it, and again whenever there is a new one.
  portalOwner_.emplace(session, kPortal, [this, asked = false](const std::string& owner) mutable {
    if (!std::exchange(asked, true) || !owner.empty()) readColorScheme("ReadOne");
  });
}

// The portal may be started for this: a desktop that has one leaves the colour scheme to it.
void PortalWorkspace::readColorScheme(const char* method) {
  const BusMethod read{kPortal, kPath, kInterface, method, BusActivation::allowed};
  query_ = callAsync(methodCall(session_, read, kNamespace, kKey), [this, method](sd_bus_message* reply) {
    if (!isError(reply)) {
      setColorScheme(reply);
    } else if (std::string_view(method) == "ReadOne" &&
               sd_bus_message_is_method_error(reply, SD_BUS_ERROR_UNKNOWN_METHOD) > 0) {
      readColorScheme("Read");  // portals before version 2
    }
  });
}

/// A "v" that holds 0 for no preference, 1 for dark or 2 for light; `Read` wraps it once more.
void PortalWorkspace::setColorScheme(sd_bus_message* value) {
  char type = 0;
  const char* contents = nullptr;
  while (sd_bus_message_peek_type(value, &type, &contents) > 0 && type == SD_BUS_TYPE_VARIANT) {
    if (sd_bus_message_enter_container(value, SD_BUS_TYPE_VARIANT, contents) <= 0) return;
  }
  std::uint32_t scheme = 0;
  if (sd_bus_message_read_basic(value, SD_BUS_TYPE_UINT32, &scheme) <= 0) return;
  portal_.reset();
  if (scheme == 1) portal_ = Appearance::dark;
  if (scheme == 2) portal_ = Appearance::light;
  update();
}

void PortalWorkspace::update() {
  auto told = portal_;
  if (!told && plasmaFiles_) told = setup_.plasma->ofWindows();
  const Appearance now = told.value_or(isDarkTheme(themeName_) ? Appearance::dark : Appearance::light);
  if (now == appearance_) return;
  appearance_ = now;
  observers_.notify(now);
}

bool PortalWorkspace::openSystemMonitor() {
  const auto monitor = findSystemMonitor(setup_.desktop, setup_.searchPath);
  return monitor && programs_.start({monitor->path});
}

// The portal knows the user's choice also from inside a container; without one, xdg-open does.
void PortalWorkspace::openLink(const std::string& url) {
  constexpr BusMethod kOpen{kPortal, kPath, "org.freedesktop.portal.OpenURI", "OpenURI", BusActivation::allowed};
  (void)callOr(link_, methodCall(session_, kOpen, "", url, NoOptions()), [this, url] { return openByProgram(url); });
}

bool PortalWorkspace::openByProgram(const std::string& url) {
  const auto path = findProgram("xdg-open", setup_.searchPath);
  return path && programs_.start({*path, url});
}

// `otherwise` is done at once when the call cannot be made, and later when it fails.
bool PortalWorkspace::callOr(BusSlot& pending, const BusMessage& call, const std::function<bool()>& otherwise) {
  pending = callAsync(call, [otherwise](sd_bus_message* reply) {
    if (isError(reply)) (void)otherwise();
  });
  return pending || otherwise();
}

bool PortalWorkspace::openApplication(const std::string& bundleIdentifier) {
  const auto* const marks = applicationMarks(bundleIdentifier);
  if (marks == nullptr) return false;
  const auto application = findInstalledApplication(marks->desktopIds, setup_.applicationFolders, setup_.searchPath);
  if (!application) return false;
  if (!application->isActivatable) return programs_.start(application->command);

  const std::string& name = application->desktopId;
  const std::string path = objectPath(name);
  const BusMethod activate{name.c_str(), path.c_str(), "org.freedesktop.Application", "Activate",
                           BusActivation::allowed};
  return callOr(application_, methodCall(session_, activate, NoOptions()),
                [this, command = application->command] { return programs_.start(command); });
}

// The portal's OpenURI would take a folder's URI and then quietly refuse it.
void PortalWorkspace::revealFile(const std::filesystem::path& file) {
  constexpr BusMethod kShow{"org.freedesktop.FileManager1", "/org/freedesktop/FileManager1",
                            "org.freedesktop.FileManager1", "ShowItems", BusActivation::allowed};
  (void)callOr(file_, methodCall(session_, kShow, std::vector{fileUri(file)}, ""),
               [this, folder = fileUri(file.parent_path())] { return openByProgram(folder); });
}

// org.freedesktop.Notifications, as freedesktop.org describes it; a desktop without a server for them may start one.
// The answer is only its number.
void PortalWorkspace::notify(const std::string& title, const std::string& text) {
  constexpr BusMethod kNotify{"org.freedesktop.Notifications", "/org/freedesktop/Notifications",
                              "org.freedesktop.Notifications", "Notify", BusActivation::allowed};
  constexpr std::uint32_t kNew = 0;
  constexpr std::int32_t kUsualTime = -1;
  notice_ = callAsync(methodCall(session_, kNotify, "Nimbo", kNew, "com.quellwerk.Nimbo", title, text,
                                 std::vector<std::string>(), NoOptions(), kUsualTime),
                      [](sd_bus_message* /*reply*/) {});
}

}  // namespace nimbo
