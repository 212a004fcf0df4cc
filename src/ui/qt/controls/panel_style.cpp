// SPDX-License-Identifier: MIT
#include "ui/qt/controls/panel_style.h"

#include <QStyleOption>
#include <algorithm>

#include "ui/qt/controls/control_painting.h"

namespace nimbo {
namespace {

constexpr int kScrollBarExtent = 8;
constexpr double kThumbMargin = 2;
constexpr int kToolTipMargin = 5;
constexpr int kMenuMargin = 4;
constexpr int kStepperWidth = 18;
constexpr int kFieldPadding = 4;
constexpr int kStepperInset = 3;  // brings the two arrows closer together

// Entries of a context menu, or of a pop-up's list, which is drawn like one.
constexpr int kRowHeight = 24;
constexpr int kSeparatorHeight = 9;
constexpr int kMenuPadding = 10;
constexpr int kCheckWidth = 16;
constexpr int kShortcutGap = 24;
constexpr int kRowPadding = 6;
constexpr int kTextFlags = Qt::TextSingleLine | Qt::TextHideMnemonic;
constexpr double kMenuRadius = 5;
constexpr double kGroundInset = 4;

int textStart(const QStyleOptionMenuItem& item) {
  return kMenuPadding + (item.menuHasCheckableItems ? kCheckWidth : 0);
}

bool isSeparator(const QStyleOptionMenuItem& item) { return item.menuItemType == QStyleOptionMenuItem::Separator; }

QString titleOf(const QStyleOptionMenuItem& item) { return item.text.section('\t', 0, 0); }
QString shortcutOf(const QStyleOptionMenuItem& item) { return item.text.section('\t', 1); }

void drawTexts(QPainter& painter, const QStyleOptionMenuItem& item, const QColor& quiet) {
  const QRect place = item.rect.adjusted(textStart(item), 0, -kMenuPadding, 0);
  painter.setFont(item.font);
  painter.drawText(place, kTextFlags | Qt::AlignVCenter | Qt::AlignLeft, titleOf(item));
  painter.setPen(quiet);
  painter.drawText(place, kTextFlags | Qt::AlignVCenter | Qt::AlignRight, shortcutOf(item));
}

void drawMenuItem(QPainter& painter, const QStyleOptionMenuItem& item, const Theme& theme) {
  const QRectF row = item.rect;
  if (isSeparator(item)) {
    painter.fillRect(QRectF(row.left() + kMenuPadding, row.center().y(), row.width() - 2 * kMenuPadding, 1),
                     theme.color(ColorRole::separator));
    return;
  }
  painter.save();
  const bool enabled = (item.state & QStyle::State_Enabled) != 0;
  const bool selected = enabled && (item.state & QStyle::State_Selected) != 0;
  painter.setRenderHint(QPainter::Antialiasing);
  if (selected) {
    fillRounded(painter, row.adjusted(kGroundInset, 0, -kGroundInset, 0), kMenuRadius, theme.accent());
  }
  const QColor ink = selected  ? theme.color(ColorRole::accentLabel)
                     : enabled ? theme.color(ColorRole::label)
                               : theme.disabledLabel();
  painter.setPen(ink);
  if (item.checked) {
    drawCheckMark(painter,
                  {row.left() + kMenuPadding - 3, row.center().y() - kCheckWidth / 2.0, kCheckWidth, kCheckWidth});
  }
  drawTexts(painter, item, selected || !enabled ? ink : theme.color(ColorRole::secondaryLabel));
  painter.restore();
}

/// Without the shortcut itself, for which menus keep a column.
QSize menuItemSize(const QStyleOptionMenuItem& item) {
  if (isSeparator(item)) return {2 * kMenuPadding, kSeparatorHeight};
  const int shortcut = shortcutOf(item).isEmpty() ? 0 : kShortcutGap;
  const QSize title = item.fontMetrics.size(kTextFlags, titleOf(item));
  return {textStart(item) + title.width() + shortcut + kMenuPadding,
          std::max(kRowHeight, title.height() + kRowPadding)};
}

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
  painter->setPen(QPen(theme_.color(ColorRole::separator), 1));
  painter->setBrush(theme_.color(ColorRole::background));
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
  fillRounded(*painter, inner, radius, color);
  painter->restore();
}

}  // namespace nimbo
