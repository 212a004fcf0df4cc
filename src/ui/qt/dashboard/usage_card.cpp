// SPDX-License-Identifier: MIT
#include "ui/qt/dashboard/usage_card.h"

#include "ui/qt/controls/control_painting.h"
#include "ui/qt/controls/dashboard_button.h"
#include "ui/qt/dashboard/chart_widget.h"

namespace nimbo {

/// One limit window. A widget around its four parts, so that the tool tip does not go away between them.
class UsageRow final : public QWidget {
 public:
  UsageRow(const Theme& theme, QWidget* parent) : QWidget(parent), controls_(theme, *this, {}) {
    setObjectName("usageRow");
    controls_.label("usageRowTitle", &UsageRowContent::title);
    controls_.label("usageRowAmount", &UsageRowContent::amount);
    controls_.bind(&UsageRowContent::bar, new ChartWidget(theme, this))->setObjectName("usageRowBar");
    controls_.label("usageRowReset", &UsageRowContent::reset);
  }

  void setContent(const UsageRowContent& content) {
    setGeometry(toQRect(content.frame));
    setPlainToolTip(*this, content.title.toolTip);
    controls_.render(content);
    show();
  }

 private:
  PageControls<UsageRowContent> controls_;
};

UsageCard::UsageCard(const Theme& theme, UsageProvider provider, const ControlListener& listener, QWidget* parent)
    : QWidget(parent), theme_(theme), provider_(provider), controls_(theme, *this, listener) {
  setObjectName("usageCard." + QString::fromUtf8(rawValue(provider)));
  controls_.label("usageCardTitle", &UsageCardContent::title);
  link_ = controls_.control<DashboardButton>(&UsageCardContent::link);
  controls_.label("usageCardStatus", &UsageCardContent::status);
  connect_ = controls_.control<DashboardButton>(&UsageCardContent::connect);
}

UsageCard::~UsageCard() = default;

void UsageCard::setContent(const UsageCardContent& content) {
  setGeometry(toQRect(content.frame));
  setSpokenName(*this, content.title.text);
  // The toolkit would move the focus to the next card.
  if (connect_->hasFocus() && !content.connect.visible) link_->setFocus(Qt::OtherFocusReason);
  controls_.render(content);
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
