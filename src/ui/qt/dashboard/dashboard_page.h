// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>
#include <optional>

#include "ui/dashboard/dashboard_window.h"
#include "ui/qt/controls/page_controls.h"
#include "ui/qt/dashboard/process_list_widget.h"
#include "ui/qt/dashboard/usage_page.h"

namespace nimbo {

/// What stands in the dashboard: the head and the foot, and the page between them.
class DashboardPage final : public QWidget {
 public:
  DashboardPage(const Theme& theme, QWidget* parent);

  void setActions(DashboardActions actions);
  void render(const DashboardContent& content);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  void addResources();
  void addKeepAwake();

  const Theme& theme_;
  PageControls<DashboardContent, DashboardActions> controls_;
  PageControls<ResourcesContent, DashboardActions> resources_;
  PageControls<AwakeContent, AwakeActions> awake_;
  std::optional<UsagePage> usage_;  ///< made in its turn, for the order in which Tab goes
  ProcessListWidget* processes_ = nullptr;
  Rect footerSeparator_;
};

}  // namespace nimbo
