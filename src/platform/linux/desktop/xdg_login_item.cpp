// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/xdg_login_item.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <system_error>
#include <utility>

#include "platform/linux/desktop/desktop_entry.h"
#include "platform/linux/desktop/desktop_programs.h"
#include "platform/posix/files/atomic_file.h"
#include "platform/posix/files/regular_file.h"
#include "platform/posix/files/unique_fd.h"

namespace nimbo {
namespace {

namespace fs = std::filesystem;

constexpr const char* kFile = "com.quellwerk.Nimbo.desktop";
constexpr std::size_t kLongestAutostartEntry = 65536;

constexpr const char* kEntry = R"([Desktop Entry]
Type=Application
Name=Nimbo
Comment=Memory, AI allowances and Keep Awake in the system tray
Icon=com.quellwerk.Nimbo
Exec={}
TryExec={}
Terminal=false
StartupNotify=false
X-GNOME-Autostart-enabled=true
)";

tl::unexpected<LoginItemError> failure(std::error_code error) {
  return tl::unexpected(LoginItemError{error.message()});
}

bool isShownOn(const DesktopEntry& entry, const std::string& desktop) {
  const auto isHere = [&desktop](const std::string& name) { return desktopIs(desktop, name); };
  const auto only = entry.list("OnlyShowIn");
  if (only && std::none_of(only->begin(), only->end(), isHere)) return false;
  const auto never = entry.list("NotShowIn");
  return !never || std::none_of(never->begin(), never->end(), isHere);
}

}  // namespace

XdgLoginItem::XdgLoginItem(Setup setup) : setup_(std::move(setup)), file_(setup_.configFolder / "autostart" / kFile) {}

LoginItemStatus XdgLoginItem::status() const {
  const auto text = readRegularFile(file_, kLongestAutostartEntry);
  const auto entry = text ? DesktopEntry::parse(*text) : std::nullopt;
  // Desktops' own settings switch an entry off by the first or the second key. Some desktops go on to start one that
  // has the second; its meaning is plain all the same.
  const bool isOn = entry && !entry->flag("Hidden").value_or(false) &&
                    entry->flag("X-GNOME-Autostart-enabled").value_or(true) && entry->text("Type") == "Application" &&
                    isShownOn(*entry, setup_.desktop) && entry->command(setup_.searchPath);
  return isOn ? LoginItemStatus::enabled : LoginItemStatus::notRegistered;
}

Result<void, LoginItemError> XdgLoginItem::registerItem() {
  const std::string& program = setup_.program.native();
  if (::access(program.c_str(), X_OK) != 0) return failure(lastError());
  std::error_code error;
  if (fs::is_symlink(file_, error) && ::unlink(file_.c_str()) != 0) return failure(lastError());
  error = writeFileAtomically(file_,
                              fmt::format(kEntry, escapedForEntry(quotedForExec(program)), escapedForEntry(program)));
  if (error) return failure(error);
  return {};
}

// Not std::filesystem::remove, which would take an empty folder away, too.
Result<void, LoginItemError> XdgLoginItem::unregisterItem() {
  if (::unlink(file_.c_str()) != 0 && errno != ENOENT) return failure(lastError());
  return {};
}

}  // namespace nimbo
