// SPDX-License-Identifier: MIT
#include "ui/qt/qt_user_interface.h"

#include <QCursor>
#include <QIcon>
#include <QScreen>
#include <QSessionManager>
#include <QTimer>
#include <QToolTip>
#include <algorithm>
#include <clocale>
#include <cmath>

#include "ui/qt/accessibility.h"
#include "ui/qt/controls/panel_style.h"
#include "ui/qt/controls/qt_geometry.h"
#include "ui/qt/dashboard/qt_dashboard_window.h"
#include "ui/qt/settings/qt_settings_window.h"
#include "ui/qt/windows/qt_alert.h"
#include "ui/qt/windows/window_system.h"

namespace nimbo {
namespace {

/// A screen in the window system's own pixels. The toolkit scales sizes but leaves origins alone.
QRectF pixelFrame(const QScreen& screen) {
  const QRectF frame = screen.geometry();
  return {frame.topLeft(), frame.size() * screen.devicePixelRatio()};
}

double distanceFromPointer(const Rect& rect) {
  const QPointF apart = toQRectF(rect).center() - QPointF(QCursor::pos());
  return std::hypot(apart.x(), apart.y());
}

// The session would otherwise note the toolkit's command line and start the program by itself at
// the next login.
void refuseRestart(QSessionManager& session) { session.setRestartHint(QSessionManager::RestartNever); }

}  // namespace

Result<std::unique_ptr<QtUserInterface>, WindowsEnd> QtUserInterface::make(DisplayNeed need) {
  auto platform = reachablePlatform();
  if (!platform && need == DisplayNeed::optional) platform = "offscreen";
  return platform.map(
      [](const std::string& name) { return std::unique_ptr<QtUserInterface>(new QtUserInterface(name)); });
}

QtUserInterface::QtUserInterface(const std::string& platform) : arguments_{"nimbo", "-platform", platform} {
  QCoreApplication::setApplicationName("Nimbo");
  QGuiApplication::setDesktopFileName("com.quellwerk.Nimbo");
  QAccessible::installFactory(makeAccessibleApplication);
  prepareToolkit();
  application_ = std::make_unique<QApplication>(argumentCount_, argumentPointers_.data());
  // The toolkit has taken over the user's locale, decimal comma included, for the whole process.
  std::setlocale(LC_NUMERIC, "C");

  // Beside a program that lies elsewhere than where desktops look for icons.
  QIcon::setFallbackSearchPaths({QCoreApplication::applicationDirPath() + "/../../share/icons/hicolor/128x128/apps"});
  // The program runs on without a window and without any of the toolkit's own jobs.
  QGuiApplication::setQuitOnLastWindowClosed(false);
  QCoreApplication::setQuitLockEnabled(false);
  QObject::connect(application_.get(), &QGuiApplication::commitDataRequest, refuseRestart);
  QObject::connect(application_.get(), &QGuiApplication::saveStateRequest, refuseRestart);

  QApplication::setStyle(new PanelStyle(theme_));
  QAccessible::installFactory(makeAccessibleWidget);
  windowSystem_ = makeWindowSystem();
  mainMenuKeys_.showIn(*windowSystem_);
  watchScreens();
  setAppearance(Appearance::light);
}

QtUserInterface::~QtUserInterface() {
  QAccessible::removeFactory(makeAccessibleWidget);
  QAccessible::removeFactory(makeAccessibleApplication);
}

// Observers are told once for each burst of changes.
void QtUserInterface::watchScreens() {
  auto* const burst = new QTimer(application_.get());
  burst->setSingleShot(true);
  QObject::connect(burst, &QTimer::timeout, burst, [this] { screenObservers_.notify(); });
  const auto changed = [burst] { burst->start(0); };
  const auto watch = [burst, changed](const QScreen* screen) {
    QObject::connect(screen, &QScreen::geometryChanged, burst, changed);
    QObject::connect(screen, &QScreen::availableGeometryChanged, burst, changed);
  };
  QObject::connect(qGuiApp, &QGuiApplication::screenAdded, burst, watch);
  QObject::connect(qGuiApp, &QGuiApplication::screenAdded, burst, changed);
  QObject::connect(qGuiApp, &QGuiApplication::screenRemoved, burst, changed);
  QObject::connect(qGuiApp, &QGuiApplication::primaryScreenChanged, burst, changed);
  std::ranges::for_each(QGuiApplication::screens(), watch);
}

std::vector<Screen> QtUserInterface::screens() const {
  std::vector<Screen> result;
  for (const QScreen* const screen : QGuiApplication::screens()) {
    // While none is connected the toolkit keeps one without a size.
    if (screen->geometry().isEmpty()) continue;
    const QMarginsF panels =
        QMarginsF(windowSystem_->panelMargins(pixelFrame(*screen).toRect())) / screen->devicePixelRatio();
    const QRectF free = QRectF(screen->geometry()).marginsRemoved(panels);
    result.push_back({toRect(screen->geometry()), toRect(free & QRectF(screen->availableGeometry()))});
  }
  return result;
}

Rect QtUserInterface::toPoints(const Rect& reported) {
  // On Wayland and macOS all speak of points.
  const QString platform = QGuiApplication::platformName();
  if (platform.startsWith("wayland") || platform == "cocoa") return reported;
  for (const QScreen* const screen : QGuiApplication::screens()) {
    const QRectF frame = pixelFrame(*screen);
    if (!frame.contains(toQRectF(reported).center())) continue;
    const double scale = screen->devicePixelRatio();
    const Rect scaled{frame.x() + (reported.x - frame.x()) / scale, frame.y() + (reported.y - frame.y()) / scale,
                      reported.width / scale, reported.height / scale};
    // Panels on GTK scale by themselves and report points already.
    constexpr double kNear = 48;
    const double inPoints = distanceFromPointer(reported);
    const double inPixels = distanceFromPointer(scaled);
    if (std::min(inPoints, inPixels) <= kNear) placesAreInPoints_ = inPoints < inPixels;
    return placesAreInPoints_ ? reported : scaled;
  }
  return reported;
}

std::optional<Point> QtUserInterface::pointer() const {
  const bool wayland = QGuiApplication::platformName().startsWith("wayland");
  if (wayland || !windowSystem_->popupsHearAllClicks()) return std::nullopt;
  const QPoint place = QCursor::pos();
  return Point{static_cast<double>(place.x()), static_cast<double>(place.y())};
}

void QtUserInterface::setAppearance(Appearance appearance) {
  theme_.setAppearance(appearance);
  QApplication::setPalette(theme_.palette());
  QToolTip::setPalette(theme_.palette());
}

std::unique_ptr<DashboardWindow> QtUserInterface::makeDashboardWindow() {
  return std::make_unique<DashboardPanel>(makeMenuWindow(), *this);
}

std::unique_ptr<MenuWindow> QtUserInterface::makeMenuWindow() {
  return std::make_unique<QtDashboardWindow>(theme_, *windowSystem_);
}

std::unique_ptr<SettingsWindow> QtUserInterface::makeSettingsWindow() {
  auto window = std::make_unique<QtSettingsWindow>(theme_, *windowSystem_);
  mainMenuKeys_.serve(*window);
  return window;
}

std::unique_ptr<Alert> QtUserInterface::showAlert(const AlertContent& content, AlertAnswer answered) {
  auto alert = std::make_unique<QtAlert>(theme_, *windowSystem_, content, std::move(answered));
  mainMenuKeys_.serve(*alert);
  alert->present();
  return alert;
}

}  // namespace nimbo
