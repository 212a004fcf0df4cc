// SPDX-License-Identifier: MIT
#include "platform/linux/tray/tray_host.h"

#include <algorithm>
#include <initializer_list>

#include "base/text.h"
#include "platform/linux/desktop/desktop_programs.h"

namespace nimbo {
namespace {

std::string escaped(std::string_view text) {
  return replacedCharacters(text, {{'&', "&amp;"}, {'<', "&lt;"}, {'>', "&gt;"}});
}

}  // namespace

ToolTipText toolTipText(const std::string& text, ToolTipTitle kind) {
  const std::string repaired = repairedUtf8(text);
  std::string_view rest = repaired;
  const std::string_view title = takeUntil(rest, '\n');
  rest.remove_prefix(std::min(rest.find_first_not_of('\n'), rest.size()));
  return {kind == ToolTipTitle::plain ? std::string(title) : escaped(title), escaped(rest)};
}

TrayHost trayHostOn(std::string_view desktop) {
  const auto isAny = [desktop](std::initializer_list<const char*> names) {
    return std::any_of(names.begin(), names.end(), [&](const char* name) { return desktopIs(desktop, name); });
  };
  // xfce4-panel shows a title or an accessible description as the second line of a tooltip that has none, and tells
  // screen readers neither. The panels of the last three show a tooltip's title as it is; mate-panel and waybar parse
  // it, and an unknown host is better shown an entity than nothing.
  return {isAny({"GNOME"}), !isAny({"XFCE"}),
          isAny({"XFCE", "KDE", "LXQt"}) ? ToolTipTitle::plain : ToolTipTitle::markup};
}

}  // namespace nimbo
