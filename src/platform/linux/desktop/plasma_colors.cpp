// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/plasma_colors.h"

#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <charconv>
#include <utility>

#include "base/text.h"
#include "platform/linux/desktop/desktop_entry.h"
#include "platform/posix/files/regular_file.h"

namespace nimbo {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kMaximumBytes = 1 << 20;
constexpr std::string_view kWindowColors = "Colors:Window";
constexpr std::string_view kBackground = "BackgroundNormal";

/// KDE's settings have the form of desktop entries.
std::optional<std::string> valueIn(const fs::path& file, std::string_view group, std::string_view key) {
  const auto text = readRegularFile(file, kMaximumBytes);
  if (!text) return std::nullopt;
  const auto entry = DesktopEntry::parse(*text, group);
  return entry ? entry->text(key) : std::nullopt;
}

/// Of a background such as "239,240,241".
std::optional<Appearance> appearanceOf(const std::optional<std::string>& color) {
  if (!color) return std::nullopt;
  std::array<int, 3> parts{};
  std::string_view rest = *color;
  for (int& part : parts) {
    const std::string_view number = trimmed(takeUntil(rest, ','));
    const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), part);
    if (error != std::errc() || part < 0 || part > 255) return std::nullopt;
  }
  // Rec. 601's weights tell well enough which of two inks is seen on it.
  const double luma = 0.299 * parts[0] + 0.587 * parts[1] + 0.114 * parts[2];
  return luma < 128 ? Appearance::dark : Appearance::light;
}

}  // namespace

/// What the user has set goes before what came with the global theme.
std::optional<std::string> PlasmaColors::setting(std::string_view file, std::string_view group,
                                                 std::string_view key) const {
  const auto own = valueIn(folders_.config / file, group, key);
  return own ? own : valueIn(folders_.config / "kdedefaults" / file, group, key);
}

std::optional<Appearance> PlasmaColors::ofColors(const fs::path& fileInData) const {
  for (const fs::path& folder : folders_.data) {
    if (auto found = appearanceOf(valueIn(folder / fileInData, kWindowColors, kBackground))) return found;
  }
  return std::nullopt;
}

std::optional<Appearance> PlasmaColors::ofWindows() const {
  if (auto found = appearanceOf(setting("kdeglobals", kWindowColors, kBackground))) return found;
  const auto scheme = setting("kdeglobals", "General", "ColorScheme");
  return scheme ? ofColors("color-schemes/" + *scheme + ".colors") : std::nullopt;
}

std::optional<Appearance> PlasmaColors::ofPanels() const {
  const auto style = setting("plasmarc", "Theme", "name").value_or("default");
  const auto own = ofColors("plasma/desktoptheme/" + style + "/colors");
  return own ? own : ofWindows();
}

Subscription PlasmaColors::observe(std::function<void()> changed) {
  if (!inotify_) startWatching();
  return observers_.add(std::move(changed));
}

void PlasmaColors::startWatching() {
  inotify_.reset(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
  if (!inotify_) return;
  // Their folders, because files are replaced or linked in whole when they are written.
  for (const fs::path& folder : {folders_.config, folders_.config / "kdedefaults"}) {
    ::inotify_add_watch(inotify_.get(), folder.c_str(), IN_MOVED_TO | IN_CREATE | IN_CLOSE_WRITE | IN_ONLYDIR);
  }
  readable_ = loop_.watch(inotify_.get(), [this] { filesChanged(); });
}

void PlasmaColors::filesChanged() {
  alignas(inotify_event) std::array<char, 4096> events{};
  bool concerned = false;
  for (ssize_t size = 0; (size = ::read(inotify_.get(), events.data(), events.size())) > 0;) {
    for (const char* at = events.data(); at < events.data() + size;) {
      const auto* const event = reinterpret_cast<const inotify_event*>(at);
      const std::string_view name = event->len > 0 ? event->name : "";
      concerned = concerned || name == "plasmarc" || name == "kdeglobals";
      at += sizeof(inotify_event) + event->len;
    }
  }
  if (concerned) observers_.notify();
}

}  // namespace nimbo
