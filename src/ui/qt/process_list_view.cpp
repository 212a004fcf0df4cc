// SPDX-License-Identifier: MIT
#include "ui/qt/process_list_view.h"

#include "ui/qt/fitted_label.h"

namespace nimbo {
namespace {

constexpr int kRowHeight = 29;

}  // namespace

ProcessListView::ProcessListView(const Theme& theme, QWidget* parent) : ScrollView(kRowHeight, parent), theme_(theme) {}

ProcessListView::~ProcessListView() = default;

void ProcessListView::setContent(const ProcessListContent& content) {
  if (content_ == content) return;
  content_ = content;
  while (labels_.size() > content.labels.size()) labels_.pop_back();
  while (labels_.size() < content.labels.size()) labels_.push_back(std::make_unique<FittedLabel>(theme_, document()));
  for (std::size_t index = 0; index < labels_.size(); ++index) labels_[index]->setContent(content.labels[index]);
  place(content.frame, content.document, content.visible);
}

}  // namespace nimbo
