// SPDX-License-Identifier: MIT
#include "ui/qt/controls/menu_style.h"

#include <QPainter>
#include <QStyleOption>
#include <algorithm>

#include "ui/qt/controls/control_painting.h"

namespace nimbo {
namespace {

constexpr int kRowHeight = 24;
constexpr int kSeparatorHeight = 9;
constexpr int kMenuPadding = 10;
constexpr int kCheckWidth = 16;
constexpr int kShortcutGap = 24;
constexpr int kRowPadding = 6;
constexpr int kTextFlags = Qt::TextSingleLine | Qt::TextHideMnemonic;
constexpr double kMenuRadius = 5;
constexpr double kGroundInset = 4;

int textStart(const QStyleOptionMenuItem& item) { return kMenuPadding + (item.menuHasCheckableItems ? kCheckWidth : 0); }

bool isSeparator(const QStyleOptionMenuItem& item) { return item.menuItemType == QStyleOptionMenuItem::Separator; }

void drawSeparator(QPainter& painter, const QRectF& row, const Theme& theme) {
  painter.fillRect(QRectF(row.left() + kMenuPadding, row.center().y(), row.width() - 2 * kMenuPadding, 1), theme.separator());
}

QString titleOf(const QStyleOptionMenuItem& item) { return item.text.section('\t', 0, 0); }
QString shortcutOf(const QStyleOptionMenuItem& item) { return item.text.section('\t', 1); }

void drawTexts(QPainter& painter, const QStyleOptionMenuItem& item, const QColor& quiet) {
  const QRect place = item.rect.adjusted(textStart(item), 0, -kMenuPadding, 0);
  painter.setFont(item.font);
  painter.drawText(place, kTextFlags | Qt::AlignVCenter | Qt::AlignLeft, titleOf(item));
  painter.setPen(quiet);
  painter.drawText(place, kTextFlags | Qt::AlignVCenter | Qt::AlignRight, shortcutOf(item));
}

}  // namespace

void drawMenuItem(QPainter& painter, const QStyleOptionMenuItem& item, const Theme& theme) {
  painter.save();
  const QRectF row = item.rect;
  if (isSeparator(item)) {
    drawSeparator(painter, row, theme);
    painter.restore();
    return;
  }
  const bool enabled = (item.state & QStyle::State_Enabled) != 0;
  const bool selected = enabled && (item.state & QStyle::State_Selected) != 0;
  painter.setRenderHint(QPainter::Antialiasing);
  if (selected) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme.accent());
    painter.drawRoundedRect(row.adjusted(kGroundInset, 0, -kGroundInset, 0), kMenuRadius, kMenuRadius);
  }
  const QColor ink = selected ? theme.accentLabel() : enabled ? theme.color(ColorRole::label) : theme.disabledLabel();
  painter.setPen(ink);
  if (item.checked) {
    drawCheckMark(painter, {row.left() + kMenuPadding - 3, row.center().y() - kCheckWidth / 2.0, kCheckWidth, kCheckWidth});
  }
  drawTexts(painter, item, selected || !enabled ? ink : theme.color(ColorRole::secondaryLabel));
  painter.restore();
}

QSize menuItemSize(const QStyleOptionMenuItem& item) {
  if (isSeparator(item)) return {2 * kMenuPadding, kSeparatorHeight};
  const int shortcut = shortcutOf(item).isEmpty() ? 0 : kShortcutGap;
  const QSize title = item.fontMetrics.size(kTextFlags, titleOf(item));
  return {textStart(item) + title.width() + shortcut + kMenuPadding, std::max(kRowHeight, title.height() + kRowPadding)};
}

}  // namespace nimbo
