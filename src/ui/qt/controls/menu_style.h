// SPDX-License-Identifier: MIT
#pragma once

#include <QSize>

class QPainter;
class QStyleOptionMenuItem;

namespace nimbo {

class Theme;

/// An entry of a context menu or of a pop-up's list, which is drawn like one.
void drawMenuItem(QPainter& painter, const QStyleOptionMenuItem& item, const Theme& theme);

/// Without the shortcut itself, for which menus keep a column.
[[nodiscard]] QSize menuItemSize(const QStyleOptionMenuItem& item);

}  // namespace nimbo
