// SPDX-License-Identifier: MIT
#pragma once

#include <QScrollArea>

#include "base/geometry.h"

namespace nimbo {

/// A document under a frame, with a thin bar over it; wheel, arrow and page keys move it, and the
/// keyboard focus when it reaches a control out of sight. Its own focus ring has room only around it,
/// so the page draws it.
class ScrollArea : public QScrollArea {
 public:
  /// `step` is what one press of an arrow key moves.
  ScrollArea(int step, QWidget* parent);
  ~ScrollArea() override;

  /// What is scrolled; widgets in it stay where they are when it is placed anew.
  [[nodiscard]] QWidget* document() const { return document_; }

  void place(const Rect& frame, Size document, bool visible);

 protected:
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;

 private:
  void reveal(QWidget* focused);

  QWidget* const document_;
};

}  // namespace nimbo
