// SPDX-License-Identifier: MIT
#include "ui/qt/dashboard/usage_row.h"

#include "ui/qt/controls/fitted_label.h"
#include "ui/qt/controls/moved_content.h"
#include "ui/qt/controls/plain_tool_tip.h"
#include "ui/qt/controls/qt_geometry.h"
#include "ui/qt/dashboard/usage_bar.h"

namespace nimbo {
namespace {

Rect frameAround(const UsageRowContent& row) {
  return toRect(toQRectF(row.title.frame) | toQRectF(row.amount.frame) | toQRectF(row.bar.frame) |
                toQRectF(row.reset.frame));
}

}  // namespace

UsageRow::UsageRow(const Theme& theme, QWidget* parent)
    : QWidget(parent),
      title_(new FittedLabel(theme, this)),
      amount_(new FittedLabel(theme, this)),
      bar_(new UsageBar(theme, this)),
      reset_(new FittedLabel(theme, this)) {
  setObjectName("usageRow");
  title_->setObjectName("usageRowTitle");
  amount_->setObjectName("usageRowAmount");
  bar_->setObjectName("usageRowBar");
  reset_->setObjectName("usageRowReset");
}

void UsageRow::setContent(const UsageRowContent& content) {
  if (content_ == content) return;
  content_ = content;
  const Rect frame = frameAround(content);
  setGeometry(toQRect(frame));
  setPlainToolTip(*this, QString::fromStdString(content.title.toolTip));
  title_->setContent(movedInto(frame, content.title));
  amount_->setContent(movedInto(frame, content.amount));
  bar_->setContent(movedInto(frame, content.bar));
  reset_->setContent(movedInto(frame, content.reset));
  show();
}

}  // namespace nimbo
