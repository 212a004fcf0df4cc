// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <vector>

#include "ui/dashboard/dashboard_content.h"
#include "ui/qt/controls/fitted_label.h"
#include "ui/qt/controls/scroll_area.h"

namespace nimbo {

/// The scrolling list of processes. Rows are kept and filled anew, so that the place scrolled to
/// holds from one scan to the next.
class ProcessListWidget final : public ScrollArea {
 public:
  ProcessListWidget(const Theme& theme, QWidget* parent);

  void setContent(const ProcessListContent& content);

 private:
  const Theme& theme_;
  std::vector<std::unique_ptr<FittedLabel>> labels_;
};

}  // namespace nimbo
