// SPDX-License-Identifier: MIT
#include "ui/qt/panel_style.h"

#include <QPainter>
#include <QStyleOption>

#include "ui/qt/theme.h"

namespace nimbo {
namespace {

constexpr int kScrollBarExtent = 9;
constexpr double kThumbMargin = 2;
constexpr int kToolTipMargin = 5;

}  // namespace

PanelStyle::PanelStyle(const Theme& theme) : QProxyStyle("Fusion"), theme_(theme) {}

int PanelStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                          QStyleHintReturn* data) const {
  // Scroll bars take no room from the view and have no arrow buttons.
  if (hint == SH_ScrollBar_Transient) return 1;
  return QProxyStyle::styleHint(hint, option, widget, data);
}

int PanelStyle::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const {
  if (metric == PM_ScrollBarExtent) return kScrollBarExtent;
  if (metric == PM_ToolTipLabelFrameWidth) return kToolTipMargin;
  return QProxyStyle::pixelMetric(metric, option, widget);
}

void PanelStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                               const QWidget* widget) const {
  if (element != PE_PanelTipLabel) {
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    return;
  }
  painter->save();
  painter->setPen(QPen(theme_.separator(), 1));
  painter->setBrush(theme_.background());
  painter->drawRect(option->rect.toRectF().adjusted(0.5, 0.5, -0.5, -0.5));
  painter->restore();
}

void PanelStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                                    const QWidget* widget) const {
  if (control != CC_ScrollBar) {
    QProxyStyle::drawComplexControl(control, option, painter, widget);
    return;
  }
  const QRectF thumb = subControlRect(CC_ScrollBar, option, SC_ScrollBarSlider, widget);
  const QRectF inner = thumb.adjusted(kThumbMargin, kThumbMargin, -kThumbMargin, -kThumbMargin);
  const double radius = std::min(inner.width(), inner.height()) / 2;
  QColor color = theme_.color(ColorRole::label);
  color.setAlphaF(option->state & (State_MouseOver | State_Sunken) ? 0.45F : 0.25F);
  painter->save();
  painter->setRenderHint(QPainter::Antialiasing);
  painter->setPen(Qt::NoPen);
  painter->setBrush(color);
  painter->drawRoundedRect(inner, radius, radius);
  painter->restore();
}

}  // namespace nimbo
