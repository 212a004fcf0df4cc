// SPDX-License-Identifier: MIT
#include "platform/linux/tray/tray_host.h"

#include <algorithm>

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
  // xfce4-panel shows a title or an accessible description as the second line of a tooltip that has none, and tells
  // screen readers neither. The panels of the last three show a tooltip's title as it is; mate-panel and waybar parse
  // it, and an unknown host is better shown an entity than nothing.
  const bool plain = desktopIsAny(desktop, {"XFCE", "KDE", "LXQt"});
  const auto sorting = desktopIsAny(desktop, {"MATE"})                ? TraySorting::byIdentifier
                       : desktopIsAny(desktop, {"KDE", "X-Cinnamon"}) ? TraySorting::byTitle
                       : desktopIsAny(desktop, {"XFCE"})              ? TraySorting::asBefore
                                                                      : TraySorting::none;
  return {.clickOpensMenu = desktopIsAny(desktop, {"GNOME"}),
          .readsTitles = !desktopIsAny(desktop, {"XFCE"}),
          .showsLabels = desktopIsAny(desktop, {"GNOME", "MATE"}),
          .itemOrder = desktopIsAny(desktop, {"GNOME", "XFCE"}) ? ItemOrder::newestFirst : ItemOrder::oldestFirst,
          .sorting = sorting,
          .toolTipTitle = plain ? ToolTipTitle::plain : ToolTipTitle::markup};
}

const char* adviceWithoutTray(std::string_view desktop) {
  if (desktopIsAny(desktop, {"GNOME"})) {
    return "GNOME has a tray with the extension “AppIndicator and KStatusNotifierItem Support”.";
  }
  if (desktopIsAny(desktop, {"XFCE"})) {
    return "Add the “Status Tray Plugin” to your panel.";
  }
  if (desktopIsAny(desktop, {"sway", "Hyprland", "river", "niri", "labwc", "wlroots"})) {
    return "Add a tray to your bar, such as waybar’s module “tray”.";
  }
  return "Add a system tray to your panel.";
}

}  // namespace nimbo
