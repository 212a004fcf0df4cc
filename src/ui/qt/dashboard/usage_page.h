// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "ui/dashboard/dashboard_content.h"
#include "ui/qt/controls/page_controls.h"
#include "ui/qt/controls/scroll_area.h"

namespace nimbo {

class UsageCard;

/// The AI page: cards that scroll and the controls below them, in the order in which Tab visits
/// them. The widgets stand directly in `parent`, which owns them.
class UsagePage {
 public:
  UsagePage(const Theme& theme, QWidget& parent, const ControlListener& listener);

  /// Null for a page that is not shown.
  void renderOrHide(const UsageContent* content);

  [[nodiscard]] const ScrollArea& scroll() const { return *scroll_; }

 private:
  void renderCards(const std::vector<UsageCardContent>& contents);
  /// The card of a provider that is already there, no longer in `cards_`, or a new one.
  [[nodiscard]] UsageCard* takeCard(UsageProvider provider);

  const Theme& theme_;
  const ControlListener listener_;
  ScrollArea* const scroll_;
  std::vector<UsageCard*> cards_;  ///< from top to bottom
  PageControls<UsageContent> controls_;
};

}  // namespace nimbo
