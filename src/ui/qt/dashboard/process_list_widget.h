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
  ProcessListWidget(const Theme& theme, QWidget* parent) : ScrollArea(kRowHeight, parent), theme_(theme) {
    setObjectName("processes");
  }

  void setContent(const ProcessListContent& content) {
    while (labels_.size() > content.labels.size()) labels_.pop_back();
    while (labels_.size() < content.labels.size()) labels_.push_back(std::make_unique<FittedLabel>(theme_, document()));
    for (std::size_t index = 0; index < labels_.size(); ++index) labels_[index]->setContent(content.labels[index]);
    place(content.frame, content.document, content.visible);
  }

 private:
  static constexpr int kRowHeight = 29;

  const Theme& theme_;
  std::vector<std::unique_ptr<FittedLabel>> labels_;
};

}  // namespace nimbo
