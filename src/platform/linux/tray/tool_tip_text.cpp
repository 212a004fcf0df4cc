// SPDX-License-Identifier: MIT
#include "platform/linux/tray/tool_tip_text.h"

#include <algorithm>

#include "base/text.h"
#include "platform/linux/desktop/current_desktop.h"

namespace nimbo {
namespace {

std::string escaped(std::string_view text) {
  return replacedCharacters(text, {{'&', "&amp;"}, {'<', "&lt;"}, {'>', "&gt;"}});
}

}  // namespace

// The panels of these show the title as it is; mate-panel and waybar parse it, and an unknown
// host is better shown an entity than nothing.
ToolTipTitle toolTipTitleOn(std::string_view desktop) {
  for (const std::string_view plain : {"XFCE", "KDE", "LXQt"}) {
    if (desktopIs(desktop, plain)) return ToolTipTitle::plain;
  }
  return ToolTipTitle::markup;
}

ToolTipText toolTipText(const std::string& text, ToolTipTitle kind) {
  const std::string repaired = repairedUtf8(text);
  std::string_view rest = repaired;
  const std::string_view title = takeUntil(rest, '\n');
  rest.remove_prefix(std::min(rest.find_first_not_of('\n'), rest.size()));
  return {kind == ToolTipTitle::plain ? std::string(title) : escaped(title), escaped(rest)};
}

}  // namespace nimbo
