// SPDX-License-Identifier: MIT
#pragma once

#include <QAccessible>

namespace nimbo {

// Factories for QAccessible::installFactory; null for what the toolkit shows assistive technology rightly.

/// The root that assistive technology starts from. The toolkit's own root leaves popups out, so that a
/// screen reader could follow the focus into the dashboard but never find it. To be installed before
/// the application is made.
[[nodiscard]] QAccessibleInterface* makeAccessibleApplication(const QString& className, QObject* object);

/// Roles, names and values of this program's widgets. To be installed after the application is made: the
/// toolkit's own factory, which comes with it, has the last word otherwise.
[[nodiscard]] QAccessibleInterface* makeAccessibleWidget(const QString& className, QObject* object);

}  // namespace nimbo
