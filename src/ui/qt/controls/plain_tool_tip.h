// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

class QWidget;

namespace nimbo {

/// Shows `text` as it is, wrapped to a readable width; never as markup, because names of processes
/// come from elsewhere. Screen readers get it as the description.
void setPlainToolTip(QWidget& widget, const QString& text);

}  // namespace nimbo
