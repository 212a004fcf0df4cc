// SPDX-License-Identifier: MIT
#include "platform/linux/accessibility/application_process.h"

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <optional>
#include <string_view>
#include <system_error>
#include <vector>

#include "base/text.h"
#include "platform/linux/files/regular_file.h"
#include "platform/linux/machine/proc_file.h"

namespace nimbo {
namespace {

namespace fs = std::filesystem;

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
