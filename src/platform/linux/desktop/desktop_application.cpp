// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/desktop_application.h"

#include <algorithm>
#include <cstddef>
#include <system_error>

#include "base/text.h"
#include "platform/linux/desktop/desktop_entry.h"
#include "platform/linux/files/xdg_folders.h"
#include "platform/linux/machine/proc_file.h"
#include "platform/posix/files/regular_file.h"

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

bool contains(const std::vector<std::string_view>& names, std::string_view name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

// A package that was updated while its program runs leaves the old one marked.
std::string withoutDeletedMark(std::string name) {
  constexpr std::string_view kMark = " (deleted)";
  if (name.ends_with(kMark)) name.resize(name.size() - kMark.size());
  return name;
}

// Packages run ".../NAME/app.asar", ".../NAME/resources/app.asar" or ".../NAME.asar".
bool isElectronProgramOf(const std::vector<std::string_view>& names, const fs::path& program) {
  if (contains(names, program.stem().native())) return true;
  fs::path folder = program.parent_path();
  if (folder.filename() == "resources") folder = folder.parent_path();
  return program.stem() == "app" && contains(names, folder.filename().native());
}

// The first word of an Electron command line that is no option.
std::optional<fs::path> electronProgram(const fs::path& process) {
  const std::string words = readAttribute(process / "cmdline").value_or("");
  std::string_view rest(words);
  for (bool isProgram = false; !rest.empty(); isProgram = true) {
    const std::string_view word = takeUntil(rest, '\0');
    if (isProgram && !word.empty() && !word.starts_with('-')) return fs::path(word);
  }
  return std::nullopt;
}

// On the bus a sandboxed application is seen as its bus proxy, which runs in a sandbox of the same name.
bool isFlatpakOf(const ApplicationMarks& application, const fs::path& process) {
  // Whoever made a sandbox could put a pipe there, which nobody writes to, or a link into our own files.
  constexpr std::size_t kLongestInfo = 65536;
  const auto info = readRegularFile(process / "root" / ".flatpak-info", kLongestInfo, LinkedFile::refuse);
  std::string_view rest = info ? std::string_view(*info) : std::string_view();
  while (const auto line = takeLine(rest)) {
    constexpr std::string_view kName = "name=";
    if (!line->starts_with(kName)) continue;
    const std::string_view name = line->substr(kName.size());
    return name == application.identifier || contains(application.programs, name.substr(name.rfind('.') + 1));
  }
  return false;
}

}  // namespace

// An application's name on the accessibility bus would not do: an Electron program bears the engine's or any it
// likes. Its process is what cannot be mistaken for a browser that shows the same page. The command-line tool that
// shares the name "claude" never shows windows. A Snap's desktop entry bears the names of package and program.
const ApplicationMarks* applicationMarks(std::string_view bundleIdentifier) {
  static const ApplicationMarks kClaude{"com.anthropic.claudefordesktop",
                                        {"claude-desktop", "Claude"},
                                        {"claude"},
                                        {"com.anthropic.claudefordesktop", "claude-desktop", "com.anthropic.Claude",
                                         "Claude", "claude-desktop_claude-desktop"}};
  return bundleIdentifier == kClaude.identifier ? &kClaude : nullptr;
}

std::vector<fs::path> dataFolders(const std::map<std::string, std::string>& environment, const XdgFolders& folders) {
  std::vector<fs::path> found{folders.data};
  const auto variable = environment.find("XDG_DATA_DIRS");
  const bool isSet = variable != environment.end() && !variable->second.empty();
  std::string_view rest = isSet ? std::string_view(variable->second) : "/usr/local/share:/usr/share";
  while (!rest.empty()) {
    const fs::path folder(takeUntil(rest, ':'));
    if (folder.is_absolute()) found.push_back(folder);
  }
  return found;
}

std::vector<fs::path> applicationFolders(const std::map<std::string, std::string>& environment,
                                         const XdgFolders& folders) {
  auto found = dataFolders(environment, folders);
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

std::optional<std::string> applicationName(const std::vector<std::string_view>& desktopIds,
                                           const std::vector<fs::path>& folders) {
  for (const std::string_view id : desktopIds) {
    const auto entry = readEntry(id, folders);
    auto name = entry ? entry->text("Name") : std::nullopt;
    if (name && !name->empty()) return name;
  }
  return std::nullopt;
}

bool isProcessOf(const ApplicationMarks& application, const std::string& root, std::int64_t pid, ProcessShows shows) {
  const fs::path process = fs::path(root) / std::to_string(pid);
  std::error_code error;
  const std::string program = withoutDeletedMark(fs::read_symlink(process / "exe", error).filename().native());
  if (contains(application.programs, program)) return true;
  if (shows == ProcessShows::windows && contains(application.ambiguousPrograms, program)) return true;
  if (program.starts_with("electron")) {
    const auto electron = electronProgram(process);
    return electron && isElectronProgramOf(application.programs, *electron);
  }
  return isFlatpakOf(application, process);
}

bool isRunning(const ApplicationMarks& application, const std::string& root) {
  bool running = false;
  visitFolder(root, [&](std::string_view name) {
    const auto number = parseNumber(name);
    const auto pid = static_cast<std::int64_t>(number.value_or(0));
    running = running || (number && isProcessOf(application, root, pid, ProcessShows::perhapsNothing));
  });
  return running;
}

}  // namespace nimbo
