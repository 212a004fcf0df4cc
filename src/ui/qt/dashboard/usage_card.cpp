// SPDX-License-Identifier: MIT
#include "ui/qt/dashboard/usage_card.h"

#include <utility>

#include "ui/qt/controls/control_painting.h"
#include "ui/qt/controls/dashboard_button.h"
#include "ui/qt/controls/fitted_label.h"
#include "ui/qt/dashboard/chart_widget.h"

namespace nimbo {

/// One limit window. A widget around its four parts, so that the tool tip does not go away between them.
class UsageRow final : public QWidget {
 public:
  UsageRow(const Theme& theme, QWidget* parent)
      : QWidget(parent),
        title_(new FittedLabel(theme, this, "usageRowTitle")),
        amount_(new FittedLabel(theme, this, "usageRowAmount")),
        bar_(new ChartWidget(theme, this)),
        reset_(new FittedLabel(theme, this, "usageRowReset")) {
    setObjectName("usageRow");
    bar_->setObjectName("usageRowBar");
  }

  void setContent(const UsageRowContent& content) {
    setGeometry(toQRect(content.frame));
    setPlainToolTip(*this, content.title.toolTip);
    title_->setContent(content.title);
    amount_->setContent(content.amount);
    bar_->setContent(content.bar);
    reset_->setContent(content.reset);
    show();
  }

 private:
  FittedLabel* const title_;
  FittedLabel* const amount_;
  ChartWidget* const bar_;
  FittedLabel* const reset_;
};

UsageCard::UsageCard(const Theme& theme, UsageProvider provider, Actions actions, QWidget* parent)
    : QWidget(parent),
      theme_(theme),
      provider_(provider),
      title_(new FittedLabel(theme, this, "usageCardTitle")),
      link_(new DashboardButton(theme, std::move(actions.openLink), this)),
      status_(new FittedLabel(theme, this, "usageCardStatus")),
      connect_(new DashboardButton(theme, std::move(actions.connect), this)) {
  setObjectName("usageCard." + QString::fromUtf8(rawValue(provider)));
}

UsageCard::~UsageCard() = default;

void UsageCard::setContent(const UsageCardContent& content) {
  setGeometry(toQRect(content.frame));
  setSpokenName(*this, content.title.text);
  title_->setContent(content.title);
  link_->setContent(content.link);
  status_->setContent(content.status);
  // The toolkit would move the focus to the next card.
  if (connect_->hasFocus() && !content.connect.visible) link_->setFocus(Qt::OtherFocusReason);
  connect_->setContent(content.connect);
  while (rows_.size() > content.rows.size()) rows_.pop_back();
  while (rows_.size() < content.rows.size()) rows_.push_back(std::make_unique<UsageRow>(theme_, this));
  for (std::size_t index = 0; index < rows_.size(); ++index) rows_[index]->setContent(content.rows[index]);
  show();
}

QWidget* UsageCard::followInTabOrder(QWidget* previous) {
  setTabOrder(previous, link_);
  setTabOrder(link_, connect_);
  return connect_;
}

void UsageCard::paintEvent(QPaintEvent* /*event*/) {
  constexpr double kRadius = 10.5;
  SmoothPainter painter(this);
  fillRounded(painter, rect(), kRadius, theme_.color(ColorRole::cardGround), theme_.color(ColorRole::separator),
              1 / devicePixelRatioF());
}

}  // namespace nimbo
