// SPDX-License-Identifier: MIT
#include "ui/qt/linux/layer/layer_window_system.h"

#include <qpa/qplatformnativeinterface.h>
#include <qpa/qplatformwindow.h>

#include <QEnterEvent>
#include <QExposeEvent>
#include <QGuiApplication>
#include <QPlatformSurfaceEvent>
#include <QScreen>
#include <QWidget>
#include <QWindow>
#include <algorithm>
#include <chrono>
#include <cstring>
#include <utility>

namespace nimbo {
namespace {

// A panel that acts on the press of a button keeps the pointer until the button is released.
constexpr std::chrono::milliseconds kWaitForPointer{1000};

// A compositor may say something of a window that has nothing to do with panels.
constexpr int kThickestPanel = 200;

/// Takes the clicks beside the dashboard. The toolkit hands them to the popup that is open.
std::unique_ptr<QWidget> makeCover(QScreen& screen) {
  // Popups would be closed for the sake of a window that is no tool.
  constexpr Qt::WindowFlags kFlags = Qt::Tool | Qt::FramelessWindowHint | Qt::WindowDoesNotAcceptFocus;
  auto cover = std::make_unique<QWidget>(nullptr, kFlags);
  cover->setObjectName("cover");
  cover->setAttribute(Qt::WA_TranslucentBackground);
  cover->setScreen(&screen);
  cover->setGeometry(screen.geometry());
  return cover;
}

QPlatformNativeInterface& native() { return *QGuiApplication::platformNativeInterface(); }

QScreen& screenOf(const QWidget& window) {
  QScreen* const screen = QGuiApplication::screenAt(window.geometry().center());
  return screen != nullptr ? *screen : *window.screen();
}

wl_surface& surfaceOf(QWindow& window) {
  return *static_cast<wl_surface*>(native().nativeResourceForWindow("surface", &window));
}

bool horizontal(Qt::Edge edge) { return edge == Qt::TopEdge || edge == Qt::BottomEdge; }

}  // namespace

std::unique_ptr<WindowSystem> LayerWindowSystem::make() {
  auto* const display = static_cast<wl_display*>(native().nativeResourceForIntegration("wl_display"));
  if (display == nullptr) return nullptr;
  auto made = std::make_unique<LayerWindowSystem>(*display);
  if (!made->shell_.offered()) return nullptr;
  return made;
}

LayerWindowSystem::LayerWindowSystem(wl_display& display) : shell_(display) {
  // The toolkit then gives windows with that flag no role of its own.
  qputenv("QT_WAYLAND_USE_BYPASSWINDOWMANAGERHINT", "1");
  patience_.setSingleShot(true);
  connect(&patience_, &QTimer::timeout, this, [this] { endWait(); });
  deactivation_.setSingleShot(true);
  connect(&surfaceEnds_, &QSignalMapper::mappedObject, this,
          [this](const QObject* window) { surfaceEnds(*static_cast<const QWindow*>(window)); });
  qGuiApp->installEventFilter(this);
}

LayerWindowSystem::~LayerWindowSystem() = default;

Subscription LayerWindowSystem::observeOtherActivation(std::function<void()> activated) {
  deactivation_.disconnect();
  connect(&deactivation_, &QTimer::timeout, this, [activated = std::move(activated)] {
    if (QGuiApplication::focusWindow() == nullptr) activated();
  });
  // A turn later, because the focus may only be on its way to a window of our own.
  const auto focus = connect(qGuiApp, &QGuiApplication::focusWindowChanged, this, [this](const QWindow* focused) {
    if (focused == nullptr) deactivation_.start(0);
  });
  return Subscription([this, focus] {
    disconnect(focus);
    deactivation_.stop();
  });
}

void LayerWindowSystem::activate(QWidget& window) { window.activateWindow(); }

void LayerWindowSystem::hang(QWidget& window, const QRect& frame, const Hanging& hanging) {
  window.setGeometry(frame);
  hanging_ = &window;
  how_ = hanging;
  const auto surface = surfaces_.find(window.windowHandle());
  if (surface != surfaces_.end()) placeHanging(*surface->second);
}

bool LayerWindowSystem::isHanging(const QWindow& window) const {
  return hanging_ != nullptr && hanging_->windowHandle() == &window;
}

bool LayerWindowSystem::isCover(const QWindow& window) const {
  return std::ranges::any_of(covers_, [&](const auto& each) { return each->windowHandle() == &window; });
}

bool LayerWindowSystem::isLayer(const QWindow& window) const {
  const QWindow* const parent = window.transientParent();
  return isHanging(window) || isCover(window) || (parent != nullptr && isLayer(*parent));
}

bool LayerWindowSystem::eventFilter(QObject* watched, QEvent* event) {
  if (!watched->isWindowType()) return false;
  auto& window = *static_cast<QWindow*>(watched);
  const bool isOpen = surfaces_.contains(&window) || inner_.contains(&window);
  switch (event->type()) {
    case QEvent::PlatformSurface:
      if (static_cast<QPlatformSurfaceEvent*>(event)->surfaceEventType() == QPlatformSurfaceEvent::SurfaceCreated &&
          isLayer(window)) {
        watchSurface(window);
      }
      return false;
    case QEvent::Expose:
      if (isOpen) return isCover(window);  // which has been drawn
      // One that was hidden again meanwhile has no surface any more.
      return window.isVisible() && window.isExposed() && isLayer(window) && !open(window);
    case QEvent::Move:
      if (const auto inner = inner_.find(&window); inner != inner_.end()) {
        inner->second->move(window.position() - window.transientParent()->position());
      }
      return false;
    case QEvent::Enter:
      if (isCover(window)) pointerEntered(static_cast<QEnterEvent*>(event)->globalPosition());
      return false;
    default:
      return false;
  }
}

void LayerWindowSystem::watchSurface(QWindow& window) {
  window.setFlag(Qt::BypassWindowManagerHint);
  auto* const toolkits = dynamic_cast<QObject*>(window.handle());
  surfaceEnds_.setMapping(toolkits, &window);
  connect(toolkits, SIGNAL(wlSurfaceDestroyed()), &surfaceEnds_, SLOT(map()));
}

bool LayerWindowSystem::open(QWindow& window) {
  if (isCover(window)) {
    const Layer layer = shell_.newestIsLowest() ? Layer::overPanels : Layer::panels;
    LayerSurface& surface = makeSurface(window, *window.screen(), layer);
    surface.fill(true);
    (void)surface.settle();
    if (surfaces_.size() == covers_.size()) waitForPointer();
    return true;
  }
  if (!isHanging(window)) {
    QWindow& parent = *window.transientParent();
    const auto& inner = inner_[&window] = shell_.makeInner(surfaceOf(window), surfaceOf(parent));
    inner->move(window.position() - parent.position());
    return true;
  }
  if (covers_.empty()) coverScreens();
  if (surfaces_.size() < covers_.size() || patience_.isActive()) return false;
  LayerSurface& surface = makeSurface(window, screenOf(*hanging_), Layer::overPanels);
  measure(surface);
  surface.takeKeyboard();
  placeHanging(surface);
  (void)surface.settle();
  for (const auto& cover : covers_) {
    if (shell_.newestIsLowest()) surfaces_.at(cover->windowHandle())->restack();
  }
  return true;
}

void LayerWindowSystem::surfaceEnds(const QWindow& window) {
  inner_.erase(&window);
  surfaces_.erase(&window);
  if (!isHanging(window)) return;
  patience_.stop();
  for (auto& each : std::exchange(covers_, {})) each.release()->deleteLater();
}

void LayerWindowSystem::coverScreens() {
  for (QScreen* const screen : QGuiApplication::screens()) covers_.push_back(makeCover(*screen));
  for (const auto& cover : covers_) cover->show();
}

// The window has the pointer to itself already, as popups have, and nobody would hear where it is.
void LayerWindowSystem::waitForPointer() {
  if (hanging_ == nullptr || !hanging_->isVisible()) return;
  hanging_->windowHandle()->setMouseGrabEnabled(false);
  patience_.start(how_.unsure ? kWaitForPointer : std::chrono::milliseconds::zero());
}

void LayerWindowSystem::endWait() {
  patience_.stop();
  if (hanging_ == nullptr || !hanging_->isVisible()) return;
  hanging_->windowHandle()->setMouseGrabEnabled(true);
  QWindow& window = *hanging_->windowHandle();
  QExposeEvent event(QRect(QPoint(), window.size()));
  QCoreApplication::sendEvent(&window, &event);
}

void LayerWindowSystem::pointerEntered(QPointF place) {
  if (!patience_.isActive() || !how_.unsure) return;
  if (const auto found = how_.pointerFound) found(place);
  endWait();
}

LayerSurface& LayerWindowSystem::makeSurface(QWindow& window, QScreen& screen, Layer layer) {
  auto* const output = static_cast<wl_output*>(native().nativeResourceForScreen("output", &screen));
  const auto closed = [&window] { window.close(); };
  return *(surfaces_[&window] = shell_.makeSurface(surfaceOf(window), output, layer, closed));
}

void LayerWindowSystem::measure(LayerSurface& surface) {
  surface.fill(false);
  free_ = surface.settle();
  unreserved_ = {0, 0};
  const QSize screen = screenOf(*hanging_).size();
  if (free_ != screen) return;
  const QSize hidden = screen - shell_.roomForWindows().value_or(screen);
  const auto believed = [](int thickness) { return thickness > 0 && thickness <= kThickestPanel ? thickness : 0; };
  unreserved_ = {believed(hidden.width()), believed(hidden.height())};
  free_ -= unreserved_;
}

// An item in a corner may be at either edge; the panel is where something is taken.
Qt::Edge LayerWindowSystem::panelsEdge() const {
  const QRect screen = screenOf(*hanging_).geometry();
  const QSize taken = screen.size() - free_;
  const QPoint side = how_.item - screen.center();
  if (taken.height() == 0 && taken.width() > 0 && horizontal(how_.edge)) {
    return side.x() < 0 ? Qt::LeftEdge : Qt::RightEdge;
  }
  if (taken.width() == 0 && taken.height() > 0 && !horizontal(how_.edge)) {
    return side.y() < 0 ? Qt::TopEdge : Qt::BottomEdge;
  }
  return how_.edge;
}

// How far from the edge panels reach only the compositor knows. The toolkit is told what is likely, because what
// controls open is kept on the screen by that.
void LayerWindowSystem::placeHanging(LayerSurface& surface) {
  const QRect screen = screenOf(*hanging_).geometry();
  const Qt::Edge edge = panelsEdge();
  const QSize gap = horizontal(edge) ? QSize(0, how_.gap) : QSize(how_.gap, 0);
  QRect frame = hanging_->geometry() - shadow_;
  frame.setSize(frame.size().boundedTo(free_ - gap));
  const auto along = [](int place, int size, int room) { return std::max(std::min(place, room - size), 0); };
  const int x = along(how_.item.x() - screen.x(), frame.width(), free_.width());
  const int y = along(how_.item.y() - screen.y(), frame.height(), free_.height());
  const QSize taken = screen.size() - free_;
  const int distance = how_.gap + (horizontal(edge) ? unreserved_.height() : unreserved_.width());
  QMargins margins;
  switch (edge) {
    case Qt::TopEdge:
      margins = {x, distance, 0, 0};
      frame.moveTopLeft({x, taken.height() + how_.gap});
      break;
    case Qt::BottomEdge:
      margins = {x, 0, 0, distance};
      frame.moveTopLeft({x, free_.height() - how_.gap - frame.height()});
      break;
    case Qt::LeftEdge:
      margins = {distance, y, 0, 0};
      frame.moveTopLeft({taken.width() + how_.gap, y});
      break;
    case Qt::RightEdge:
      margins = {0, y, distance, 0};
      frame.moveTopLeft({free_.width() - how_.gap - frame.width(), y});
      break;
  }
  hanging_->setGeometry(frame.translated(screen.topLeft()) + shadow_);
  surface.anchor(edge, margins - shadow_, hanging_->size());
}

}  // namespace nimbo
