// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>
#include <functional>
#include <memory>
#include <vector>

#include "ui/dashboard/usage_page_content.h"

namespace nimbo {

class DashboardButton;
class FittedLabel;
class Theme;
class UsageRow;

/// One provider with its limit windows, a group of that name to assistive technology.
class UsageCard final : public QWidget {
 public:
  struct Actions {
    std::function<void()> openLink;
    std::function<void()> connect;
  };

  UsageCard(const Theme& theme, UsageProvider provider, Actions actions, QWidget* parent);
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
  FittedLabel* const title_;
  DashboardButton* const link_;
  FittedLabel* const status_;
  DashboardButton* const connect_;
  std::vector<std::unique_ptr<UsageRow>> rows_;
};

}  // namespace nimbo
