// SPDX-License-Identifier: MIT
#include "ui/qt/application_accessible.h"

#include <QAccessibleObject>
#include <QGuiApplication>
#include <QWindow>

namespace nimbo {
namespace {

class AccessibleApplication final : public QAccessibleObject {
 public:
  using QAccessibleObject::QAccessibleObject;

  [[nodiscard]] QAccessibleInterface* parent() const override { return nullptr; }
  [[nodiscard]] QWindow* window() const override { return nullptr; }
  [[nodiscard]] int childCount() const override { return static_cast<int>(roots().size()); }

  [[nodiscard]] QAccessibleInterface* child(int index) const override {
    const auto windows = roots();
    return index >= 0 && index < windows.size() ? windows[index] : nullptr;
  }

  int indexOfChild(const QAccessibleInterface* child) const override {
    const auto windows = roots();
    for (int index = 0; index < windows.size(); ++index) {
      if (windows[index]->object() == child->object()) return index;
    }
    return -1;
  }

  [[nodiscard]] QAccessibleInterface* focusChild() const override {
    const QWindow* const focused = QGuiApplication::focusWindow();
    return focused != nullptr ? focused->accessibleRoot() : nullptr;
  }

  [[nodiscard]] QString text(QAccessible::Text kind) const override {
    return kind == QAccessible::Name ? QGuiApplication::applicationName() : QString();
  }

  [[nodiscard]] QAccessible::Role role() const override { return QAccessible::Application; }
  [[nodiscard]] QAccessible::State state() const override { return {}; }

 private:
  static QList<QAccessibleInterface*> roots() {
    QList<QAccessibleInterface*> result;
    const auto windows = QGuiApplication::topLevelWindows();
    for (const QWindow* const window : windows) {
      if (window->type() == Qt::ToolTip || window->type() == Qt::Desktop) continue;
      if (auto* const root = window->accessibleRoot()) result.push_back(root);
    }
    return result;
  }
};

}  // namespace

QAccessibleInterface* makeAccessibleApplication(const QString& /*className*/, QObject* object) {
  return object != nullptr && object == QCoreApplication::instance() ? new AccessibleApplication(object) : nullptr;
}

}  // namespace nimbo
