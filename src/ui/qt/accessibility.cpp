// SPDX-License-Identifier: MIT
#include "ui/qt/accessibility.h"

#include <QAbstractItemView>
#include <QAccessibleObject>
#include <QAccessibleWidget>
#include <QGuiApplication>
#include <QWindow>

#include "ui/qt/controls/pop_up_button.h"
#include "ui/qt/controls/scroll_area.h"
#include "ui/qt/dashboard/chart_widget.h"
#include "ui/qt/dashboard/usage_card.h"
#include "ui/qt/settings/qt_settings_window.h"
#include "ui/qt/settings/settings_page.h"
#include "ui/qt/windows/qt_alert.h"

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

// The toolkit's own interface calls a pop-up by the selected item and not by its name.
class AccessiblePopUp final : public QAccessibleWidget {
 public:
  explicit AccessiblePopUp(PopUpButton& popUp) : QAccessibleWidget(&popUp, QAccessible::ComboBox), popUp_(popUp) {}

  [[nodiscard]] QString text(QAccessible::Text part) const override {
    return part == QAccessible::Value ? popUp_.currentText() : QAccessibleWidget::text(part);
  }
  [[nodiscard]] QAccessible::State state() const override {
    auto state = QAccessibleWidget::state();
    const bool open = popUp_.view()->isVisible();
    state.hasPopup = state.expandable = true;
    state.expanded = open;
    state.collapsed = !open;
    return state;
  }

  // The list, also while it is closed, so that its items can be found.
  [[nodiscard]] int childCount() const override { return 1; }
  [[nodiscard]] QAccessibleInterface* child(int index) const override {
    return index == 0 ? QAccessible::queryAccessibleInterface(popUp_.view()) : nullptr;
  }
  int indexOfChild(const QAccessibleInterface* child) const override {
    return child->object() == popUp_.view() ? 0 : -1;
  }

  [[nodiscard]] QStringList actionNames() const override { return {showMenuAction(), pressAction()}; }
  void doAction(const QString& name) override {
    if (!actionNames().contains(name) || !popUp_.isEnabled()) return;
    if (popUp_.view()->isVisible()) {
      popUp_.hidePopup();
    } else {
      popUp_.showPopup();
    }
  }

 private:
  PopUpButton& popUp_;
};

class AccessibleChart final : public QAccessibleWidget, public QAccessibleValueInterface {
 public:
  explicit AccessibleChart(ChartWidget& chart) : QAccessibleWidget(&chart), chart_(chart) {}

  [[nodiscard]] QAccessible::Role role() const override {
    return chart_.content().progress ? QAccessible::ProgressBar : QAccessible::Chart;
  }

  void* interface_cast(QAccessible::InterfaceType type) override {
    if (type == QAccessible::ValueInterface) return static_cast<QAccessibleValueInterface*>(this);
    return QAccessibleWidget::interface_cast(type);
  }
  [[nodiscard]] QString text(QAccessible::Text part) const override {
    const bool reading = part == QAccessible::Value || part == QAccessible::Description;
    return reading ? QString::fromStdString(chart_.content().reading) : QAccessibleWidget::text(part);
  }

  [[nodiscard]] QVariant currentValue() const override { return chart_.content().percent; }
  void setCurrentValue(const QVariant& /*value*/) override {}
  [[nodiscard]] QVariant maximumValue() const override { return 100.0; }
  [[nodiscard]] QVariant minimumValue() const override { return 0.0; }
  [[nodiscard]] QVariant minimumStepSize() const override { return 0.0; }

 private:
  ChartWidget& chart_;
};

template <class... Widgets>
bool isOneOf(const QObject* object) {
  return (... || (dynamic_cast<const Widgets*>(object) != nullptr));
}

/// Of the widgets that need nothing else of their own.
std::optional<QAccessible::Role> roleOf(const QObject* object) {
  if (isOneOf<UsageCard, SettingsPage>(object)) return QAccessible::Grouping;
  // The toolkit says that it is a mere filler.
  if (isOneOf<QtSettingsWindow>(object)) return QAccessible::Window;
  if (isOneOf<QtAlert>(object)) return QAccessible::AlertMessage;
  // The toolkit's own interface counts the scroll bars only while they show, and reads beyond its list when
  // somebody asks for one that has gone since.
  if (isOneOf<ScrollArea>(object)) return QAccessible::Client;
  return std::nullopt;
}

}  // namespace

QAccessibleInterface* makeAccessibleApplication(const QString& /*className*/, QObject* object) {
  return object != nullptr && object == QCoreApplication::instance() ? new AccessibleApplication(object) : nullptr;
}

QAccessibleInterface* makeAccessibleWidget(const QString& /*className*/, QObject* object) {
  if (auto* const popUp = dynamic_cast<PopUpButton*>(object)) return new AccessiblePopUp(*popUp);
  if (auto* const chart = dynamic_cast<ChartWidget*>(object)) return new AccessibleChart(*chart);
  const auto role = roleOf(object);
  return role ? new QAccessibleWidget(static_cast<QWidget*>(object), *role) : nullptr;
}

}  // namespace nimbo
