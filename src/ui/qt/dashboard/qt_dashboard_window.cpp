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

namespace nimbo {
namespace {

constexpr double kCornerRadius = 12;
constexpr std::chrono::milliseconds kGrabInterval{30};
constexpr int kGrabAttempts = 100;

// A soft shadow that falls a little downwards.
constexpr int kShadowReach = 20;
constexpr int kShadowDrop = 6;
constexpr QMargins kShadowMargins{kShadowReach, kShadowReach - kShadowDrop, kShadowReach, kShadowReach + kShadowDrop};
constexpr double kShadowStrength = 0.4;

/// How strong the shadow of an edge is so far outside it, or inside where that is negative: half at the edge itself.
double shadowAt(int distance) {
  const double share = (1 - static_cast<double>(distance) / kShadowReach) / 2;
  return kShadowStrength * share * share * (3 - 2 * share);
}

/// Ring by ring, each in place of the one before: sums of faint layers would be rounded away.
void drawShadow(QPainter& painter, const QRect& card) {
  constexpr int kCovered = static_cast<int>(kCornerRadius);
  painter.save();
  painter.setClipRegion(QRegion(card + kShadowMargins) - card.adjusted(kCovered, kCovered, -kCovered, -kCovered),
                        Qt::IntersectClip);
  painter.setCompositionMode(QPainter::CompositionMode_Source);
  const QRect shape = card.translated(0, kShadowDrop);
  for (int distance = kShadowReach; distance > -kShadowReach; --distance) {
    const auto shade = QColor::fromRgbF(0, 0, 0, static_cast<float>(shadowAt(distance)));
    fillRounded(painter, shape + QMargins(distance, distance, distance, distance),
                std::max(kCornerRadius + distance, 0.0), shade);
  }
  painter.restore();
}

Qt::WindowFlags flagsFor(const WindowSystem& windowSystem) {
  if (windowSystem.popupsHearAllClicks()) return Qt::Popup | Qt::FramelessWindowHint;
  return Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint;
}

Qt::Edge toQtEdge(ScreenEdge edge) {
  switch (edge) {
    case ScreenEdge::top:
      return Qt::TopEdge;
    case ScreenEdge::bottom:
      return Qt::BottomEdge;
    case ScreenEdge::left:
      return Qt::LeftEdge;
    case ScreenEdge::right:
      return Qt::RightEdge;
  }
  return Qt::TopEdge;
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
      catcher_(windowSystem.makeClickCatcher()),
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
  secondClickTimer_.setSingleShot(true);
  connect(&secondClickTimer_, &QTimer::timeout, this, [this] { letClicksGo(); });
  grabTimer_.setInterval(kGrabInterval);
  connect(&grabTimer_, &QTimer::timeout, this, [this] { grabInput(); });
}

QtDashboardWindow::~QtDashboardWindow() { QtDashboardWindow::hide(); }

void QtDashboardWindow::setFrame(const Rect& frame) {
  card_ = toQRect(frame);
  windowSystem_.hang(*this, card_ + margins_, hanging_);
}

void QtDashboardWindow::hangFrom(const PanelAnchor& anchor) {
  hanging_ = {.edge = toQtEdge(anchor.edge),
              .item = toQRect(anchor.rect).topLeft(),
              .gap = qRound(kGapToPanel),
              .unsure = anchor.guessed,
              .pointerFound = [this](QPointF place) {
                call(events_.pointerFound, Point{place.x(), place.y()});
              }};
}

void QtDashboardWindow::show() {
  if (presentAlert(windowSystem_)) return;
  if (!isVisible()) {
    arrangeMargins();
    secondClickTimer_.stop();
    secondClick_.reset();
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

void QtDashboardWindow::arrangeMargins() {
  compositing_ = windowSystem_.compositing();
  margins_ = compositing_ && windowSystem_.menusDrawShadows() ? kShadowMargins : QMargins();
  page_->move(margins_.left(), margins_.top());
  if (card_.isValid()) windowSystem_.hang(*this, card_ + margins_, hanging_);
  shapeCorners();
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
  windowSystem_.announceMargins(*this, margins_);
  catchClicks();
  otherActivation_ = windowSystem_.observeOtherActivation([this] { call(events_.otherApplicationActivated); });
}

void QtDashboardWindow::hideEvent(QHideEvent* event) {
  QWidget::hideEvent(event);
  qApp->removeEventFilter(this);
  keyIsForInnerPopup_ = false;
  pressedOutside_.reset();
  otherActivation_.reset();
  grabTimer_.stop();
  inputGrabbed_ = false;
  if (!std::exchange(keepsSecondClick_, false)) return letClicksGo();
  if (!catcher_) secondClick_ = windowSystem_.holdPointer();
  secondClickTimer_.start(QApplication::doubleClickInterval());
}

void QtDashboardWindow::catchClicks() {
  if (!catcher_) return;
  // Were it exactly as large as a screen, the shell would take it for a full-screen window and hide its panel.
  const QRect screens = screen()->virtualGeometry() + QMargins(1, 1, 1, 1);
  catcher_->setGeometry(screens);
  catcher_->setMask((QRegion(screens) - (geometry() - margins_)).translated(-screens.topLeft()));
  catcher_->show();
}

void QtDashboardWindow::letClicksGo() {
  secondClick_.reset();
  if (catcher_) catcher_->hide();
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
  const bool caught = catcher_ && watched == catcher_.get();
  switch (event->type()) {
    case QEvent::KeyPress:
      if (std::exchange(keyIsForInnerPopup_, false) || inner) return !inner;
      return (own || windowType() == Qt::Popup) && keyDown(*static_cast<QKeyEvent*>(event));
    case QEvent::MouseButtonPress:
      setAttribute(Qt::WA_KeyboardFocusChange, false);
      update();
      if (caught && !inner) pressedOutside_ = static_cast<QMouseEvent*>(event)->globalPosition();
      if (!own && !inner && !caught) clickedOutside(static_cast<QMouseEvent*>(event)->globalPosition());
      return false;
    case QEvent::MouseButtonRelease:
      if (caught) releasedOutside();
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
  pressedOutside_.reset();
  if (!(rect() - margins_).contains(event->position().toPoint())) pressedOutside_ = event->globalPosition();
}

// Only now: closed at the press, it would leave the release to the window below, and some panels take that for a click.
void QtDashboardWindow::mouseReleaseEvent(QMouseEvent* /*event*/) { releasedOutside(); }

void QtDashboardWindow::releasedOutside() {
  const auto place = std::exchange(pressedOutside_, std::nullopt);
  if (!place) return;
  if (grabsPointer() || !rect().contains(mapFromGlobal(*place).toPoint())) return clickedOutside(*place);
  // Without its place: an item that is under the margin does not get this click.
  call(events_.clickedOutside, std::nullopt);
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

void QtDashboardWindow::moveEvent(QMoveEvent* event) {
  QWidget::moveEvent(event);
  if (isVisible()) catchClicks();
}

void QtDashboardWindow::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  shapeCorners();
  if (isVisible()) catchClicks();
}

void QtDashboardWindow::shapeCorners() {
  if (compositing_) {
    clearMask();
  } else {
    setMask(roundedRegion(rect()));
  }
  update();
}

void QtDashboardWindow::paintEvent(QPaintEvent* event) {
  QPainter painter(this);
  const QRect card = rect() - margins_;
  // Without a compositor the half transparent pixels at the corners would come out black.
  if (!compositing_) painter.fillRect(rect(), theme_.color(ColorRole::background));
  painter.setRenderHint(QPainter::Antialiasing);
  if (!card.contains(event->rect())) drawShadow(painter, card);
  fillRounded(painter, card, kCornerRadius, theme_.color(ColorRole::background), theme_.color(ColorRole::separator),
              1 / devicePixelRatioF());
}

}  // namespace nimbo
