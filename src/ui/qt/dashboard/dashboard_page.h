// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>
#include <optional>

#include "ui/dashboard/dashboard_content.h"
#include "ui/qt/controls/page_controls.h"
#include "ui/qt/dashboard/process_list_widget.h"
#include "ui/qt/dashboard/usage_page.h"

namespace nimbo {

/// What stands in the dashboard: the head and the foot, and the page between them.
class DashboardPage final : public QWidget {
 public:
  DashboardPage(const Theme& theme, const ControlListener& listener, QWidget* parent);

  void render(const DashboardContent& content);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  void addResources();
  void addKeepAwake();

  const Theme& theme_;
  PageControls<DashboardContent> controls_;
  PageControls<ResourcesContent> resources_;
  PageControls<AwakeContent> awake_;
  std::optional<UsagePage> usage_;  ///< made in its turn, for the order in which Tab goes
  ProcessListWidget* processes_ = nullptr;
  Rect footerSeparator_;
};

}  // namespace nimbo
