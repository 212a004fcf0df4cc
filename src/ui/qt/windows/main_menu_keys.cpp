// SPDX-License-Identifier: MIT
#include "ui/qt/windows/main_menu_keys.h"

#include <QShortcut>
#include <utility>

namespace nimbo {
namespace {

constexpr const char* kName = "mainMenuKey";

QKeySequence sequenceOf(const std::string& keyEquivalent) {
  // The codes of keys are those of the characters on them, capital letters that is.
  const QChar letter = QString::fromStdString(keyEquivalent)[0].toUpper();
  return QKeyCombination(Qt::ControlModifier, static_cast<Qt::Key>(letter.unicode()));
}

/// What the entry does in `window`; empty for what is not the menu's to do.
std::function<void()> actionOf(const MainMenuEntry& entry, QWidget& window) {
  if (entry.role == MenuRole::closeWindow) return [&window] { window.close(); };
  return entry.role == MenuRole::none ? entry.action : nullptr;
}

void addKey(const MainMenuEntry& entry, QWidget& window) {
  const auto action = actionOf(entry, window);
  if (entry.keyEquivalent.empty() || !action) return;
  auto* const shortcut = new QShortcut(sequenceOf(entry.keyEquivalent), &window);
  shortcut->setObjectName(kName);
  shortcut->setAutoRepeat(false);
  QObject::connect(shortcut, &QShortcut::activated, shortcut, action);
}

}  // namespace

void MainMenuKeys::setMenu(MainMenu menu) {
  menu_ = std::move(menu);
  for (const auto& window : windows_) {
    if (window == nullptr) continue;
    for (auto* const old : window->findChildren<QShortcut*>(kName, Qt::FindDirectChildrenOnly)) {
      // Not at once: it may be the one that is being pressed.
      old->setEnabled(false);
      old->setObjectName({});
      old->deleteLater();
    }
    attach(*window);
  }
}

void MainMenuKeys::serve(QWidget& window) {
  std::erase_if(windows_, [](const auto& each) { return each == nullptr; });
  windows_.emplace_back(&window);
  attach(window);
}

void MainMenuKeys::attach(QWidget& window) const {
  for (const auto& section : menu_.sections) {
    for (const auto& entry : section.entries) addKey(entry, window);
  }
}

}  // namespace nimbo
