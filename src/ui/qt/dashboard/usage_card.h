// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>
#include <memory>
#include <vector>

#include "ui/dashboard/dashboard_content.h"
#include "ui/qt/controls/page_controls.h"

namespace nimbo {

class DashboardButton;
class UsageRow;

/// One provider with its limit windows, a group of that name to assistive technology.
class UsageCard final : public QWidget {
 public:
  UsageCard(const Theme& theme, UsageProvider provider, const ControlListener& listener, QWidget* parent);
  ~UsageCard() override;

  [[nodiscard]] UsageProvider provider() const { return provider_; }

  void setContent(const UsageCardContent& content);

  /// Lets Tab visit the card's controls after `previous`; the last of them.
  QWidget* followInTabOrder(QWidget* previous);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  const Theme& theme_;
  const UsageProvider provider_;
  PageControls<UsageCardContent> controls_;
  DashboardButton* link_ = nullptr;
  DashboardButton* connect_ = nullptr;
  std::vector<std::unique_ptr<UsageRow>> rows_;
};

}  // namespace nimbo
