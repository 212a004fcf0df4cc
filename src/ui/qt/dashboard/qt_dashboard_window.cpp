// SPDX-License-Identifier: MIT
#include "ui/qt/dashboard/qt_dashboard_window.h"

#include <QApplication>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QPushButton>
#include <QWindow>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <utility>

#include "ui/qt/controls/control_painting.h"
#include "ui/qt/controls/dashboard_button.h"
#include "ui/qt/windows/window_system.h"

namespace nimbo {
namespace {

constexpr double kCornerRadius = 12;
constexpr std::chrono::milliseconds kGrabInterval{30};
constexpr int kGrabAttempts = 100;

Qt::WindowFlags flagsFor(const WindowSystem& windowSystem) {
  if (windowSystem.popupsHearAllClicks()) return Qt::Popup | Qt::FramelessWindowHint;
  return Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint;
}

/// In whole points, row by row: the toolkit flattens small curves too coarsely to polygons.
QRegion roundedRegion(const QRect& frame) {
  QRegion region(frame);
  for (int row = 0; row < kCornerRadius; ++row) {
    const double height = kCornerRadius - row - 0.5;
    const int inset = qRound(kCornerRadius - std::sqrt(kCornerRadius * kCornerRadius - height * height));
    for (const int y : {frame.top() + row, frame.bottom() - row}) {
      region -= QRect(frame.left(), y, inset, 1);
      region -= QRect(frame.right() + 1 - inset, y, inset, 1);
    }
  }
  return region;
}

}  // namespace

QtDashboardWindow::QtDashboardWindow(const Theme& theme, WindowSystem& windowSystem)
    : QWidget(nullptr, flagsFor(windowSystem)),
      theme_(theme),
      windowSystem_(windowSystem),
      page_(new DashboardPage(
          theme, [this](const ControlEvent& event) { call(listener_, event); }, this)) {
  setObjectName("dashboard");
  setWindowTitle("Nimbo");
  setAccessibleName("Nimbo");
  setAttribute(Qt::WA_TranslucentBackground);
  // Compositors give menus their shadow and leave out opening effects made for ordinary windows.
  setAttribute(Qt::WA_X11NetWmWindowTypePopupMenu, windowType() == Qt::Popup);
  deactivationTimer_.setSingleShot(true);
  connect(&deactivationTimer_, &QTimer::timeout, this, [this] { checkDeactivation(); });
  connect(qApp, &QGuiApplication::focusWindowChanged, this, [this](const QWindow* focused) {
    // A turn later, because the focus may only be on its way to a window of our own.
    if (focused == nullptr && windowType() != Qt::Popup) deactivationTimer_.start();
  });
  grabTimer_.setInterval(kGrabInterval);
  connect(&grabTimer_, &QTimer::timeout, this, [this] { grabInput(); });
}

QtDashboardWindow::~QtDashboardWindow() { QtDashboardWindow::hide(); }

void QtDashboardWindow::show() {
  if (presentAlert(windowSystem_)) return;
  if (!isVisible()) {
    // The focus is in the window but on no control: Tab goes to the first one, and nothing is marked
    // until then.
    setAttribute(Qt::WA_KeyboardFocusChange, false);
    setFocus(Qt::PopupFocusReason);
    // A popup takes the pointer when it appears.
    inputGrabbed_ = windowType() == Qt::Popup && windowSystem_.inputIsFree();
    grabAttempts_ = 0;
    if (windowType() == Qt::Popup && !inputGrabbed_) grabTimer_.start();
    QWidget::show();
  }
  raise();
  activateWindow();
}

// What was opened from a control would otherwise stay on the screen and keep the pointer to itself.
void QtDashboardWindow::hide() {
  while (QWidget* const inner = innerPopup()) {
    if (!inner->close()) inner->hide();
  }
  // A text field would go on blinking out of sight.
  if (QWidget* const focus = isVisible() ? focusWidget() : nullptr) focus->clearFocus();
  QWidget::hide();
}

/// A list or a menu that a control of this window has opened, the topmost one.
QWidget* QtDashboardWindow::innerPopup() const {
  QWidget* const popup = QApplication::activePopupWidget();
  return isVisible() && popup != this ? popup : nullptr;
}

void QtDashboardWindow::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  qApp->installEventFilter(this);
  compositing_ = windowSystem_.compositing();
  shapeCorners();
  if (windowType() != Qt::Popup) return;
  otherActivation_ = windowSystem_.observeOtherActivation([this] { call(events_.otherApplicationActivated); });
}

void QtDashboardWindow::hideEvent(QHideEvent* event) {
  QWidget::hideEvent(event);
  qApp->removeEventFilter(this);
  keyIsForInnerPopup_ = false;
  otherActivation_.reset();
  grabTimer_.stop();
  inputGrabbed_ = false;
}

// The toolkit tries once, but a panel that acts on the press of a button holds the pointer until the
// button is released.
void QtDashboardWindow::grabInput() {
  if (windowSystem_.inputIsFree()) {
    inputGrabbed_ = windowHandle()->setKeyboardGrabEnabled(true) && windowHandle()->setMouseGrabEnabled(true);
  }
  if (inputGrabbed_ || ++grabAttempts_ == kGrabAttempts) grabTimer_.stop();
}

// Native windows see every event before the widgets in them. While a list or a menu is open, keys and
// clicks are its own: Escape and a click beside it close that alone.
bool QtDashboardWindow::eventFilter(QObject* watched, QEvent* event) {
  const bool inner = innerPopup() != nullptr;
  // A list closes at this forerunner of a key already; the key itself is still to come.
  if (event->type() == QEvent::ShortcutOverride && inner) keyIsForInnerPopup_ = true;
  if (!watched->isWindowType()) return false;
  // A popup gets all keys and clicks; of other windows, keys are theirs.
  const bool own = watched == windowHandle();
  switch (event->type()) {
    case QEvent::KeyPress:
      if (std::exchange(keyIsForInnerPopup_, false) || inner) return !inner;
      return (own || windowType() == Qt::Popup) && keyDown(*static_cast<QKeyEvent*>(event));
    case QEvent::MouseButtonPress:
      setAttribute(Qt::WA_KeyboardFocusChange, false);
      update();
      if (!own && !inner) clickedOutside(static_cast<QMouseEvent*>(event)->globalPosition());
      return false;
    default:
      return false;
  }
}

bool QtDashboardWindow::keyDown(const QKeyEvent& key) {
  if (key.key() != Qt::Key_Escape && !key.matches(QKeySequence::Close)) return performKeyEquivalent(key);
  call(events_.escapePressed);
  return true;
}

bool QtDashboardWindow::performKeyEquivalent(const QKeyEvent& key) {
  return std::ranges::any_of(findChildren<QPushButton*>(), [&](QPushButton* each) {
    auto* const button = dynamic_cast<DashboardButton*>(each);
    return button != nullptr && button->performKeyEquivalent(key);
  });
}

// A popup gets the presses on other windows too. The toolkit's own handler would close it.
void QtDashboardWindow::mousePressEvent(QMouseEvent* event) {
  if (!rect().contains(event->position().toPoint())) clickedOutside(event->globalPosition());
}

void QtDashboardWindow::clickedOutside(const QPointF& place) {
  call(events_.clickedOutside, Point{place.x(), place.y()});
}

void QtDashboardWindow::checkDeactivation() {
  if (isVisible() && QGuiApplication::focusWindow() == nullptr) call(events_.otherApplicationActivated);
}

void QtDashboardWindow::closeEvent(QCloseEvent* event) {
  // The toolkit closes popups when the application loses the focus. That may be the focus of a moment ago, before the
  // window was closed and opened again; and other applications that come to the front are told of by themselves.
  const bool focusLeft = windowType() == Qt::Popup && QGuiApplication::applicationState() != Qt::ApplicationActive;
  if (isVisible() && !focusLeft) call(events_.closeRequested);
  // Refusing for a window that is hidden would keep the session manager from ending the program.
  event->setAccepted(!isVisible());
}

void QtDashboardWindow::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  shapeCorners();
}

void QtDashboardWindow::shapeCorners() {
  if (compositing_) {
    clearMask();
  } else {
    setMask(roundedRegion(rect()));
  }
  update();
}

void QtDashboardWindow::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  // Without a compositor the half transparent pixels at the corners would come out black.
  if (!compositing_) painter.fillRect(rect(), theme_.color(ColorRole::background));
  painter.setRenderHint(QPainter::Antialiasing);
  fillRounded(painter, rect(), kCornerRadius, theme_.color(ColorRole::background), theme_.color(ColorRole::separator),
              1 / devicePixelRatioF());
}

}  // namespace nimbo
