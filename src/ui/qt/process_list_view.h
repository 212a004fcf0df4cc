// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "ui/dashboard_content.h"
#include "ui/qt/scroll_view.h"

namespace nimbo {

class FittedLabel;
class Theme;

/// The scrolling list of processes. Rows are kept and filled anew, so that the place scrolled to
/// holds from one scan to the next.
class ProcessListView final : public ScrollView {
 public:
  ProcessListView(const Theme& theme, QWidget* parent);
  ~ProcessListView() override;

  void setContent(const ProcessListContent& content);

 private:
  const Theme& theme_;
  std::vector<std::unique_ptr<FittedLabel>> labels_;
  std::optional<ProcessListContent> content_;
};

}  // namespace nimbo
