// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace nimbo {

/// A tooltip as tray hosts take it.
struct ToolTipText {
  std::string title;
  std::string subtitle;  ///< markup wherever it is shown
};

/// What a host takes the title for. One that parses it shows no tooltip at all for a bare & or <.
enum class ToolTipTitle { plain, markup };

/// Of the host that belongs to a desktop, the value of XDG_CURRENT_DESKTOP.
[[nodiscard]] ToolTipTitle toolTipTitleOn(std::string_view desktop);

/// The first line of `text` becomes the title and the rest the subtitle.
[[nodiscard]] ToolTipText toolTipText(const std::string& text, ToolTipTitle kind);

}  // namespace nimbo
