// SPDX-License-Identifier: MIT
#pragma once

#include <QProxyStyle>

namespace nimbo {

class Theme;

/// The toolkit's plain style with thin scroll bars that lie over what they scroll, calm tool tips,
/// menus and lists, and steppers in the fields they belong to.
class PanelStyle final : public QProxyStyle {
 public:
  explicit PanelStyle(const Theme& theme);

  int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                QStyleHintReturn* data) const override;
  int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override;
  QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                       const QWidget* widget) const override;
  QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& contents,
                         const QWidget* widget) const override;
  void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                   const QWidget* widget) const override;
  void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
  void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                          const QWidget* widget) const override;

 private:
  const Theme& theme_;
};

}  // namespace nimbo
