// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

#include "platform/status_bar.h"

namespace nimbo {

/// A tooltip as tray hosts take it.
struct ToolTipText {
  std::string title;
  std::string subtitle;  ///< markup wherever it is shown
};

/// What a host takes the title for. One that parses it shows no tooltip at all for a bare & or <.
enum class ToolTipTitle { plain, markup };

/// The first line of `text` becomes the title and the rest the subtitle.
[[nodiscard]] ToolTipText toolTipText(const std::string& text, ToolTipTitle kind);

/// What a host lines items up by; one that does not sort takes them as they come, and another puts those whose
/// identifiers it knows where they were.
enum class TraySorting { none, byIdentifier, byTitle, asBefore };

/// What has to be known of the program that shows the items.
struct TrayHost {
  bool clickOpensMenu;  ///< so that the menu has to offer the dashboard
  bool readsTitles;     ///< out to screen readers; shows them nowhere
  bool showsLabels;     ///< beside the pictures
  ItemOrder itemOrder;
  TraySorting sorting;
  ToolTipTitle toolTipTitle;
};

/// The host that belongs to a desktop, the value of XDG_CURRENT_DESKTOP.
[[nodiscard]] TrayHost trayHostOn(std::string_view desktop);

/// How the user of that desktop gets a tray.
[[nodiscard]] const char* adviceWithoutTray(std::string_view desktop);

}  // namespace nimbo
