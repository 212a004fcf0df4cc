// SPDX-License-Identifier: MIT
#include "ui/qt/windows/window_system.h"

#include <QApplication>
#include <QCursor>
#include <QIcon>
#include <QScreen>
#include <QWidget>
#include <algorithm>

namespace nimbo {
namespace {

// What window managers draw around windows is not known before they have done it, and is seldom more.
constexpr int kTitleBar = 40;

const QScreen& screenInUse() {
  const QScreen* const screen = QGuiApplication::screenAt(QCursor::pos());
  return screen != nullptr ? *screen : *QGuiApplication::primaryScreen();
}

}  // namespace

void setProgramIcon(QWidget& window) {
  const QIcon icon = QIcon::fromTheme(QGuiApplication::desktopFileName());
  if (!icon.isNull()) window.setWindowIcon(icon);
}

void placeInMiddle(QWidget& window) {
  const QRect free = screenInUse().availableGeometry();
  const QSize room = free.size() - window.size();
  // On a screen that is too small the title bar and what stands first stay within reach.
  window.move(free.x() + std::max(room.width() / 2, 0),
              free.y() + std::max(std::min(room.height() * 2 / 5, room.height() - kTitleBar), 0));
}

int heightForContent(const QWidget& window) {
  const QScreen& screen = window.isVisible() ? *window.screen() : screenInUse();
  const int around = window.frameGeometry().height() - window.height();
  return screen.availableGeometry().height() - std::max(around, kTitleBar);
}

void bringToFront(QWidget& window, WindowSystem& windowSystem) {
  window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
  window.show();
  window.raise();
  windowSystem.activate(window);
}

bool presentAlert(WindowSystem& windowSystem) {
  QWidget* const alert = QApplication::activeModalWidget();
  if (alert != nullptr) bringToFront(*alert, windowSystem);
  return alert != nullptr;
}

}  // namespace nimbo
