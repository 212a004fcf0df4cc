// SPDX-License-Identifier: MIT
#pragma once

#include <QAccessible>

namespace nimbo {

/// The root that assistive technology starts from, for QAccessible::installFactory; null for every
/// other object. The toolkit's own root leaves popups out, so that a screen reader could follow the
/// focus into the dashboard but never find it. To be installed before the application is made.
[[nodiscard]] QAccessibleInterface* makeAccessibleApplication(const QString& className, QObject* object);

}  // namespace nimbo
