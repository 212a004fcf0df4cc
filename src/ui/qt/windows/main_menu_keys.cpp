// SPDX-License-Identifier: MIT
#include "ui/qt/windows/main_menu_keys.h"

#include <QShortcut>
#include <QWidget>

#include "ui/qt/controls/page_controls.h"

namespace nimbo {
namespace {

QKeySequence sequenceOf(const std::string& keyEquivalent) {
  // The codes of keys are those of the characters on them, capital letters that is.
  const QChar letter = QString::fromStdString(keyEquivalent)[0].toUpper();
  return QKeyCombination(Qt::ControlModifier, static_cast<Qt::Key>(letter.unicode()));
}

}  // namespace

void MainMenuKeys::serve(QWidget& window) const {
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
