// SPDX-License-Identifier: MIT
#include "ui/qt/dashboard/process_list_widget.h"

namespace nimbo {
namespace {

constexpr int kRowHeight = 29;

}  // namespace

ProcessListWidget::ProcessListWidget(const Theme& theme, QWidget* parent)
    : ScrollArea(kRowHeight, parent), theme_(theme) {
  setObjectName("processes");
}

void ProcessListWidget::setContent(const ProcessListContent& content) {
  while (labels_.size() > content.labels.size()) labels_.pop_back();
  while (labels_.size() < content.labels.size()) labels_.push_back(std::make_unique<FittedLabel>(theme_, document()));
  for (std::size_t index = 0; index < labels_.size(); ++index) labels_[index]->setContent(content.labels[index]);
  place(content.frame, content.document, content.visible);
}

}  // namespace nimbo
