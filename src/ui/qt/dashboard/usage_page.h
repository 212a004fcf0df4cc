// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "ui/dashboard/dashboard_window.h"

class QWidget;

namespace nimbo {

class DashboardButton;
class FittedLabel;
class ScrollArea;
class Theme;
class UsageCard;

/// The AI page: cards that scroll and the controls below them, in the order in which Tab visits
/// them. The widgets stand directly in `parent`, which owns them.
class UsagePage {
 public:
  UsagePage(const Theme& theme, QWidget& parent);
  UsagePage(const UsagePage&) = delete;  // the widgets call it
  UsagePage& operator=(const UsagePage&) = delete;

  void setActions(UsageActions actions);
  void render(const UsageContent& content);

  [[nodiscard]] const ScrollArea& scroll() const { return *scroll_; }

 private:
  void renderCards(const std::vector<UsageCardContent>& contents);
  /// The card of a provider that is already there, no longer in `cards_`, or a new one.
  [[nodiscard]] UsageCard* takeCard(UsageProvider provider);
  [[nodiscard]] UsageCard* makeCard(UsageProvider provider);

  const Theme& theme_;
  UsageActions actions_;

  ScrollArea* const scroll_;
  std::vector<UsageCard*> cards_;  ///< from top to bottom
  DashboardButton* const refresh_;
  FittedLabel* const progress_;
  DashboardButton* const configure_;
  FittedLabel* const note_;
};

}  // namespace nimbo
