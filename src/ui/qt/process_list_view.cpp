// SPDX-License-Identifier: MIT
#include "ui/qt/process_list_view.h"

#include <QScrollBar>

#include "ui/qt/fitted_label.h"
#include "ui/qt/qt_geometry.h"

namespace nimbo {
namespace {

constexpr int kRowHeight = 29;

}  // namespace

ProcessListView::ProcessListView(const Theme& theme, QWidget* parent)
    : QScrollArea(parent), theme_(theme), document_(new QWidget) {
  setFocusPolicy(Qt::StrongFocus);
  setFrameShape(QFrame::NoFrame);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setWidget(document_);
  // Both would paint a ground of their own over the panel's.
  document_->setAutoFillBackground(false);
  viewport()->setAutoFillBackground(false);
  verticalScrollBar()->setSingleStep(kRowHeight);
}

ProcessListView::~ProcessListView() = default;

void ProcessListView::setContent(const ProcessListContent& content) {
  if (content_ == content) return;
  content_ = content;
  setGeometry(toQRect(content.frame));
  while (labels_.size() > content.labels.size()) labels_.pop_back();
  while (labels_.size() < content.labels.size()) labels_.push_back(std::make_unique<FittedLabel>(theme_, document_));
  for (std::size_t index = 0; index < labels_.size(); ++index) labels_[index]->setContent(content.labels[index]);
  document_->resize(qRound(content.document.width), qRound(content.document.height));
  setVisible(content.visible);
}

void ProcessListView::focusInEvent(QFocusEvent* event) {
  QScrollArea::focusInEvent(event);
  parentWidget()->update();
}

void ProcessListView::focusOutEvent(QFocusEvent* event) {
  QScrollArea::focusOutEvent(event);
  parentWidget()->update();
}

}  // namespace nimbo
