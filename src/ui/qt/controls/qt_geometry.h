// SPDX-License-Identifier: MIT
#pragma once

#include <QRect>
#include <QRectF>
#include <QSize>

#include "base/geometry.h"

namespace nimbo {

[[nodiscard]] inline QRectF toQRectF(const Rect& rect) { return {rect.x, rect.y, rect.width, rect.height}; }
[[nodiscard]] inline QRect toQRect(const Rect& rect) { return toQRectF(rect).toRect(); }
[[nodiscard]] inline QSize toQSize(const Size& size) { return {qRound(size.width), qRound(size.height)}; }
[[nodiscard]] inline Rect toRect(const QRectF& rect) { return {rect.x(), rect.y(), rect.width(), rect.height()}; }

}  // namespace nimbo
