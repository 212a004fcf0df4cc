// SPDX-License-Identifier: MIT
#include "platform/linux/tray/tool_tip_text.h"

#include "base/utf8_text.h"
#include "platform/linux/desktop/desktop_name.h"

namespace nimbo {
namespace {

std::string escaped(std::string_view text) {
  std::string result;
  for (const char character : text) {
    switch (character) {
      case '&':
        result += "&amp;";
        break;
      case '<':
        result += "&lt;";
        break;
      case '>':
        result += "&gt;";
        break;
      default:
        result += character;
    }
  }
  return result;
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
  const std::string_view whole = repaired;
  const auto lineEnd = whole.find('\n');
  const std::string_view title = whole.substr(0, lineEnd);
  ToolTipText result{kind == ToolTipTitle::plain ? std::string(title) : escaped(title), {}};
  if (lineEnd == std::string_view::npos) return result;
  const auto rest = whole.find_first_not_of('\n', lineEnd);
  if (rest != std::string_view::npos) result.subtitle = escaped(whole.substr(rest));
  return result;
}

}  // namespace nimbo
