// SPDX-License-Identifier: MIT
#pragma once

#include <QCheckBox>
#include <functional>
#include <optional>

#include "ui/controls/control_content.h"

namespace nimbo {

class Theme;

/// A box with a title beside it, on or off.
class CheckBox final : public QCheckBox {
 public:
  /// `switched` is called for the user's switching only.
  CheckBox(const Theme& theme, std::function<void(bool on)> switched, QWidget* parent);

  void setContent(const CheckBoxContent& content);

 protected:
  void paintEvent(QPaintEvent* event) override;
  [[nodiscard]] bool hitButton(const QPoint& place) const override;

 private:
  /// Box and title, which take clicks and carry the ring; what is right of them is page.
  [[nodiscard]] QRectF face() const;
  void drawBox(QPainter& painter, const QRectF& box) const;

  const Theme& theme_;
  std::optional<CheckBoxContent> content_;
};

}  // namespace nimbo
