// SPDX-License-Identifier: MIT
#include "ui/qt/windows/main_menu_keys.h"

#include <QAbstractSpinBox>
#include <QApplication>
#include <QLineEdit>
#include <QShortcut>
#include <QWidget>
#include <string>

#include "ui/qt/controls/page_controls.h"
#include "ui/qt/windows/window_system.h"

namespace nimbo {
namespace {

QKeySequence sequenceOf(const std::string& keyEquivalent) {
  // The codes of keys are those of the characters on them, capital letters that is.
  const QChar letter = QString::fromStdString(keyEquivalent)[0].toUpper();
  return QKeyCombination(Qt::ControlModifier, static_cast<Qt::Key>(letter.unicode()));
}

/// Has the control with the keyboard focus do that, if it can.
void edit(const std::string& function) {
  QWidget* control = QApplication::focusWidget();
  // It edits in a field of its own.
  if (qobject_cast<QAbstractSpinBox*>(control) != nullptr) control = control->findChild<QLineEdit*>();
  if (control == nullptr || control->metaObject()->indexOfSlot((function + "()").c_str()) < 0) return;
  QMetaObject::invokeMethod(control, function.c_str());
}

}  // namespace

void MainMenuKeys::showIn(WindowSystem& windowSystem) {
  shown_ = windowSystem.showMenu([this](MenuRole role) { choose(role); });
}

void MainMenuKeys::choose(MenuRole role) const {
  switch (role) {
    case MenuRole::separator:
      return;
    case MenuRole::openSettings:
    case MenuRole::quit:
      return call(chosen_, role);
    case MenuRole::cut:
      return edit("cut");
    case MenuRole::copy:
      return edit("copy");
    case MenuRole::paste:
      return edit("paste");
    case MenuRole::selectAll:
      return edit("selectAll");
    case MenuRole::closeWindow:
      if (QWidget* const window = QApplication::activeWindow()) window->close();
  }
}

void MainMenuKeys::serve(QWidget& window) const {
  if (shown_) return;
  const auto addKey = [&window](const MainMenuEntry& entry, const std::function<void()>& action) {
    auto* const shortcut = new QShortcut(sequenceOf(entry.keyEquivalent), &window);
    shortcut->setAutoRepeat(false);
    QObject::connect(shortcut, &QShortcut::activated, shortcut, action);
  };
  for (const auto& section : mainMenu()) {
    for (const auto& entry : section.entries) {
      if (entry.role == MenuRole::closeWindow) addKey(entry, [&window] { window.close(); });
      if (entry.role == MenuRole::openSettings || entry.role == MenuRole::quit) {
        addKey(entry, [this, role = entry.role] { call(chosen_, role); });
      }
    }
  }
}

}  // namespace nimbo
