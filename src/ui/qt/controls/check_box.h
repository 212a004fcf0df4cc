// SPDX-License-Identifier: MIT
#pragma once

#include <QCheckBox>

#include "ui/qt/controls/content_widget.h"

namespace nimbo {

/// A box with a title beside it, on or off.
class CheckBox final : public ContentWidget<QCheckBox, CheckBoxContent> {
 public:
  CheckBox(const Theme& theme, ControlListener listener, QWidget* parent);

  void setContent(const CheckBoxContent& content);

 protected:
  void paintEvent(QPaintEvent* event) override;
  [[nodiscard]] bool hitButton(const QPoint& place) const override;

 private:
  /// Box and title, which take clicks and carry the ring; what is right of them is page.
  [[nodiscard]] QRectF face() const;
  void drawBox(QPainter& painter, const QRectF& box) const;
};

}  // namespace nimbo
