// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>
#include <array>

#include "ui/dashboard/dashboard_window.h"
#include "ui/qt/controls/dashboard_button.h"
#include "ui/qt/controls/fitted_label.h"
#include "ui/qt/controls/segmented_tabs.h"
#include "ui/qt/dashboard/awake_page.h"
#include "ui/qt/dashboard/breakdown_widget.h"
#include "ui/qt/dashboard/history_widget.h"
#include "ui/qt/dashboard/process_list_widget.h"
#include "ui/qt/dashboard/usage_page.h"

namespace nimbo {

/// One widget for each field of the content, in the same order, which is also the order in which
/// Tab visits them.
class DashboardPage final : public QWidget {
 public:
  DashboardPage(const Theme& theme, QWidget* parent);

  void setActions(DashboardActions actions);
  void render(const DashboardContent& content);

  /// Presses the button whose key equivalent `key` is; whether there was one.
  bool performKeyEquivalent(const QKeyEvent& key);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  struct MemoryRow {
    FittedLabel* title;
    FittedLabel* value;
  };
  [[nodiscard]] FittedLabel* makeLabel(const char* name);
  [[nodiscard]] DashboardButton* makeButton(std::function<void()> DashboardActions::*action);

  const Theme& theme_;
  DashboardActions actions_;
  Rect footerSeparator_;

  // Owned by this widget, as is the toolkit's way.
  FittedLabel* const title_;
  SegmentedTabs* const tabs_;
  DashboardButton* const settingsButton_;
  FittedLabel* const hero_;
  FittedLabel* const subtitle_;
  HistoryWidget* const history_;
  FittedLabel* const pressure_;
  FittedLabel* const time_;
  BreakdownWidget* const breakdown_;
  std::array<MemoryRow, 5> rows_;
  FittedLabel* const cpu_;
  FittedLabel* const temperature_;
  FittedLabel* const processTitle_;
  DashboardButton* const lessButton_;
  DashboardButton* const moreButton_;
  ProcessListWidget* const processes_;
  FittedLabel* const processNote_;
  DashboardButton* const activityButton_;
  FittedLabel* const footer_;
  AwakePage awake_;
  UsagePage usage_;
  DashboardButton* const quitButton_;
  FittedLabel* const quitHint_;
};

}  // namespace nimbo
