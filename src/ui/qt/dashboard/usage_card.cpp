// SPDX-License-Identifier: MIT
#include "ui/qt/dashboard/usage_card.h"

#include <QAccessibleWidget>
#include <QPainter>
#include <utility>

#include "ui/qt/controls/dashboard_button.h"
#include "ui/qt/controls/fitted_label.h"
#include "ui/qt/controls/moved_content.h"
#include "ui/qt/controls/qt_geometry.h"
#include "ui/qt/controls/theme.h"
#include "ui/qt/dashboard/usage_row.h"

namespace nimbo {
namespace {

constexpr double kRadius = 10;

UsageRowContent rowMovedInto(const Rect& card, UsageRowContent row) {
  row.title = movedInto(card, row.title);
  row.amount = movedInto(card, row.amount);
  row.bar = movedInto(card, row.bar);
  row.reset = movedInto(card, row.reset);
  return row;
}

}  // namespace

UsageCard::UsageCard(const Theme& theme, UsageProvider provider, Actions actions, QWidget* parent)
    : QWidget(parent),
      theme_(theme),
      provider_(provider),
      title_(new FittedLabel(theme, this)),
      link_(new DashboardButton(theme, std::move(actions.openLink), this)),
      status_(new FittedLabel(theme, this)),
      connect_(new DashboardButton(theme, std::move(actions.connect), this)) {
  setObjectName("usageCard." + QString::fromUtf8(rawValue(provider)));
  title_->setObjectName("usageCardTitle");
  status_->setObjectName("usageCardStatus");
}

UsageCard::~UsageCard() = default;

void UsageCard::setContent(const UsageCardContent& content) {
  if (content_ == content) return;
  content_ = content;
  setGeometry(toQRect(content.frame));
  setAccessibleName(QString::fromStdString(content.title.text));
  title_->setContent(movedInto(content.frame, content.title));
  link_->setContent(movedInto(content.frame, content.link));
  status_->setContent(movedInto(content.frame, content.status));
  // The toolkit would let it go on to the next card.
  if (connect_->hasFocus() && !content.connect.visible) link_->setFocus(Qt::OtherFocusReason);
  connect_->setContent(movedInto(content.frame, content.connect));
  setRows(content);
  show();
}

void UsageCard::setRows(const UsageCardContent& content) {
  while (rows_.size() > content.rows.size()) rows_.pop_back();
  while (rows_.size() < content.rows.size()) rows_.push_back(std::make_unique<UsageRow>(theme_, this));
  for (std::size_t index = 0; index < rows_.size(); ++index) {
    rows_[index]->setContent(rowMovedInto(content.frame, content.rows[index]));
  }
}

QWidget* UsageCard::followInTabOrder(QWidget* previous) {
  setTabOrder(previous, link_);
  setTabOrder(link_, connect_);
  return connect_;
}

void UsageCard::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const double line = 1 / devicePixelRatioF();
  const QRectF frame = rect().toRectF().adjusted(line / 2, line / 2, -line / 2, -line / 2);
  painter.setPen(QPen(theme_.separator(), line));
  painter.setBrush(theme_.cardGround());
  painter.drawRoundedRect(frame, kRadius, kRadius);
}

QAccessibleInterface* makeAccessibleUsageCard(const QString& /*className*/, QObject* object) {
  auto* const card = dynamic_cast<UsageCard*>(object);
  return card != nullptr ? new QAccessibleWidget(card, QAccessible::Grouping) : nullptr;
}

}  // namespace nimbo
