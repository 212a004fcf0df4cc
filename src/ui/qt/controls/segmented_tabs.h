// SPDX-License-Identifier: MIT
#pragma once

#include <QTabBar>

#include "ui/controls/control_content.h"
#include "ui/qt/controls/content_widget.h"

namespace nimbo {

/// A segmented control. To assistive technology a list of page tabs, one of them selected; arrow
/// keys move the selection.
class SegmentedTabs final : public ContentWidget<QTabBar, TabsContent> {
 public:
  SegmentedTabs(const Theme& theme, ControlListener listener, QWidget* parent);

  void setContent(const TabsContent& content);

 protected:
  [[nodiscard]] QSize tabSizeHint(int index) const override;
  [[nodiscard]] QSize minimumTabSizeHint(int index) const override;
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;

 private:
  [[nodiscard]] QRectF segment(int index) const;
};

}  // namespace nimbo
