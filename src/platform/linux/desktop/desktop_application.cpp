// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/desktop_application.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "base/text.h"
#include "platform/linux/desktop/desktop_entry.h"
#include "platform/linux/files/regular_file.h"
#include "platform/linux/files/xdg_folders.h"

namespace nimbo {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kLongestEntry = 262144;  // entries in a hundred languages are some 50 KB

std::optional<DesktopEntry> readEntry(std::string_view desktopId, const std::vector<fs::path>& folders) {
  for (const auto& folder : folders) {
    const auto text = readRegularFile(folder / (std::string(desktopId) + ".desktop"), kLongestEntry);
    if (text) return DesktopEntry::parse(*text);
  }
  return std::nullopt;
}

}  // namespace

// An application's name on the accessibility bus would not do: an Electron program bears the engine's or any it
// likes. Its process is what cannot be mistaken for a browser that shows the same page. The command-line tool that
// shares the name "claude" never shows windows. A Snap's desktop entry bears the names of package and program.
const ApplicationMarks* applicationMarks(std::string_view bundleIdentifier) {
  static const std::array kApplications{
      ApplicationMarks{"com.anthropic.claudefordesktop",
                       {"claude-desktop", "Claude"},
                       {"claude"},
                       {"com.anthropic.claudefordesktop", "claude-desktop", "com.anthropic.Claude", "Claude",
                        "claude-desktop_claude-desktop"}},
  };
  const auto* const found = std::find_if(kApplications.begin(), kApplications.end(), [&](const auto& application) {
    return application.identifier == bundleIdentifier;
  });
  return found == kApplications.end() ? nullptr : found;
}

std::vector<fs::path> applicationFolders(const std::map<std::string, std::string>& environment,
                                         const XdgFolders& folders) {
  std::vector<fs::path> found{folders.data};
  const auto variable = environment.find("XDG_DATA_DIRS");
  const bool isSet = variable != environment.end() && !variable->second.empty();
  std::string_view rest = isSet ? std::string_view(variable->second) : "/usr/local/share:/usr/share";
  while (!rest.empty()) {
    const fs::path folder(takeUntil(rest, ':'));
    if (folder.is_absolute()) found.push_back(folder);
  }
  found.push_back(folders.data / "flatpak/exports/share");
  found.emplace_back("/var/lib/flatpak/exports/share");
  found.emplace_back("/var/lib/snapd/desktop");
  for (auto& folder : found) folder /= "applications";
  return found;
}

std::optional<InstalledApplication> findInstalledApplication(const std::vector<std::string_view>& desktopIds,
                                                             const std::vector<fs::path>& folders,
                                                             const std::string& searchPath) {
  for (const std::string_view id : desktopIds) {
    const auto entry = readEntry(id, folders);
    if (!entry || entry->flag("Hidden").value_or(false)) continue;
    const bool isActivatable = entry->flag("DBusActivatable").value_or(false);
    auto command = entry->command(searchPath);
    const bool needsCommand = !isActivatable || entry->text("Exec") || entry->text("TryExec");
    if (!command && needsCommand) continue;
    return InstalledApplication{std::string(id), std::move(command).value_or(std::vector<std::string>()),
                                isActivatable};
  }
  return std::nullopt;
}

}  // namespace nimbo
