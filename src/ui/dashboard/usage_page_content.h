// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "settings/usage_provider.h"
#include "ui/controls/control_content.h"

namespace nimbo {

/// A bar that shows how much is left.
struct UsageBarContent {
  Rect frame;
  double fraction = 0;  ///< 0…1, filled from the left
  ColorRole tint = ColorRole::teal;
  double alpha = 1;
  std::string accessibleName = {};
  std::string accessibleValue = {};
  std::string toolTip = {};
  bool operator==(const UsageBarContent&) const = default;
};

/// One limit window.
struct UsageRowContent {
  LabelContent title;
  LabelContent amount;
  UsageBarContent bar;
  LabelContent reset;
  bool operator==(const UsageRowContent&) const = default;
};

/// One provider. Frames are relative to the scrolled document, as are those of the rows.
struct UsageCardContent {
  UsageProvider provider = UsageProvider::codex;
  Rect frame;
  LabelContent title = {};
  ButtonContent link = {};
  LabelContent status = {};
  ButtonContent connect = {};
  std::vector<UsageRowContent> rows = {};
  bool operator==(const UsageCardContent&) const = default;
};

/// What the AI page shows; frames are relative to the dashboard.
struct UsagePageContent {
  Rect scroll;
  Size document;
  std::vector<UsageCardContent> cards;
  ButtonContent refresh;
  LabelContent progress;  ///< beside the button while a refresh runs
  ButtonContent configure;
  LabelContent note;
  bool visible = true;  ///< of everything
  bool operator==(const UsagePageContent&) const = default;
};

}  // namespace nimbo
