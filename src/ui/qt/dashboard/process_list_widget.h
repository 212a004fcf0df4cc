// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "ui/dashboard/dashboard_content.h"
#include "ui/qt/controls/scroll_area.h"

namespace nimbo {

class FittedLabel;
class Theme;

/// The scrolling list of processes. Rows are kept and filled anew, so that the place scrolled to
/// holds from one scan to the next.
class ProcessListWidget final : public ScrollArea {
 public:
  ProcessListWidget(const Theme& theme, QWidget* parent);
  ~ProcessListWidget() override;

  void setContent(const ProcessListContent& content);

 private:
  const Theme& theme_;
  std::vector<std::unique_ptr<FittedLabel>> labels_;
  std::optional<ProcessListContent> content_;
};

}  // namespace nimbo
