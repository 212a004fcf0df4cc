// SPDX-License-Identifier: MIT
#include "ui/qt/controls/panel_style.h"

#include <QPainter>
#include <QStyleOption>

#include "ui/qt/controls/menu_style.h"
#include "ui/qt/controls/theme.h"

namespace nimbo {
namespace {

constexpr int kScrollBarExtent = 8;
constexpr double kThumbMargin = 2;
constexpr int kToolTipMargin = 5;
constexpr int kMenuMargin = 4;
constexpr int kStepperWidth = 18;
constexpr int kFieldPadding = 4;
constexpr int kStepperInset = 3;  // brings the two arrows closer together

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
  if (metric == PM_MenuHMargin || metric == PM_MenuVMargin) return kMenuMargin;
  return QProxyStyle::pixelMetric(metric, option, widget);
}

QRect PanelStyle::subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                                 const QWidget* widget) const {
  if (control != CC_SpinBox) return QProxyStyle::subControlRect(control, option, part, widget);
  const QRect whole = option->rect;
  const QRect stepper = whole.adjusted(whole.width() - kStepperWidth, 0, 0, 0);
  if (part == SC_SpinBoxUp) return stepper.adjusted(0, kStepperInset, 0, -stepper.height() / 2);
  if (part == SC_SpinBoxDown) return stepper.adjusted(0, stepper.height() / 2, 0, -kStepperInset);
  if (part == SC_SpinBoxEditField) return whole.adjusted(kFieldPadding, 1, -kStepperWidth, -1);
  return whole;
}

QSize PanelStyle::sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& contents,
                                   const QWidget* widget) const {
  const auto* const item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
  if (type == CT_MenuItem && item != nullptr) return menuItemSize(*item);
  return QProxyStyle::sizeFromContents(type, option, contents, widget);
}

void PanelStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                             const QWidget* widget) const {
  const auto* const item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
  if (element == CE_MenuItem && item != nullptr) {
    drawMenuItem(*painter, *item, theme_);
  } else if (element != CE_MenuEmptyArea) {
    QProxyStyle::drawControl(element, option, painter, widget);
  }
}

void PanelStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                               const QWidget* widget) const {
  // Drawn as parts of the menu's panel and of the field that the text stands in.
  if (element == PE_Frame || element == PE_FrameMenu || element == PE_PanelLineEdit) return;
  if (element != PE_PanelTipLabel && element != PE_PanelMenu) {
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
