// SPDX-License-Identifier: MIT
#pragma once

#include <QPushButton>

#include "ui/qt/controls/content_widget.h"

namespace nimbo {

/// A button in one of the three looks; the default one of a window stands out.
class DashboardButton final : public ContentWidget<QPushButton, ButtonContent> {
 public:
  DashboardButton(const Theme& theme, ControlListener listener, QWidget* parent);

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
  void drawTitle(QPainter& painter) const;
  void drawRing(QPainter& painter, double radius) const;
};

}  // namespace nimbo
