// SPDX-License-Identifier: MIT
#pragma once

#include <QPushButton>
#include <functional>
#include <optional>

#include "ui/controls/control_content.h"

namespace nimbo {

class Theme;

/// A button in one of the three looks; the default one of a window stands out.
class DashboardButton final : public QPushButton {
 public:
  DashboardButton(const Theme& theme, std::function<void()> pressed, QWidget* parent);

  void setContent(const ButtonContent& content);

  /// Clicks when `key` is its key equivalent and it can be clicked; whether it did.
  bool performKeyEquivalent(const QKeyEvent& key);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  [[nodiscard]] bool hitButton(const QPoint& place) const override;

 private:
  [[nodiscard]] QRectF face() const;
  [[nodiscard]] QColor ground() const;
  void drawFace(QPainter& painter) const;
  void drawRing(QPainter& painter, double radius) const;

  const Theme& theme_;
  std::optional<ButtonContent> content_;
};

}  // namespace nimbo
