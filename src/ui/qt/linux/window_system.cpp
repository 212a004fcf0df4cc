// SPDX-License-Identifier: MIT
#include "ui/qt/windows/window_system.h"

#include <QGuiApplication>
#include <QPluginLoader>
#include <QWidget>
#include <cstring>

#ifdef NIMBO_LAYER_SHELL
#include "ui/qt/linux/layer/layer_window_system.h"
#endif
#include "ui/qt/linux/platform_choice.h"
#include "ui/qt/linux/x11_window_system.h"

namespace nimbo {
namespace {

/// Wayland alone, which composes always and tells nothing of other windows; or a toolkit platform without a desktop
/// around it.
class PlainWindowSystem final : public WindowSystem {
 public:
  [[nodiscard]] bool compositing() const override { return true; }
  [[nodiscard]] bool popupsHearAllClicks() const override {
    return !QGuiApplication::platformName().startsWith("wayland");
  }
  [[nodiscard]] bool inputIsFree() override { return true; }
  [[nodiscard]] Subscription observeOtherActivation(std::function<void()> /*activated*/) override { return {}; }
  void activate(QWidget& window) override { window.activateWindow(); }
  // Its place is not its own to choose; one that cannot be resized is neither tiled nor enlarged.
  void hang(QWidget& window, const QRect& frame, const Hanging& /*hanging*/) override {
    window.setFixedSize(frame.size());
    window.setGeometry(frame);
  }
};

// Missing plugins, or libraries that they need, end the process as a missing display does.
bool pluginLoads(const char* name) { return QPluginLoader(name).load(); }

#ifdef NIMBO_LAYER_SHELL
// It uses of the toolkit what may differ in any other version.
bool windowsHang() { return std::strcmp(qVersion(), QT_VERSION_STR) == 0 && layerShellOffered(); }
std::unique_ptr<WindowSystem> makeHanging() { return windowsHang() ? LayerWindowSystem::make() : nullptr; }
#else
bool windowsHang() { return false; }
std::unique_ptr<WindowSystem> makeHanging() { return nullptr; }
#endif

}  // namespace

std::unique_ptr<WindowSystem> makeWindowSystem() {
  if (QGuiApplication::platformName() == "wayland") {
    if (auto hanging = makeHanging()) return hanging;
  }
  const auto* const x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  // The invisible platform claims to be X11 too, but has no connection.
  xcb_connection_t* const connection = x11 != nullptr ? x11->connection() : nullptr;
  if (connection == nullptr) return std::make_unique<PlainWindowSystem>();
  return std::make_unique<X11WindowSystem>(*connection, qEnvironmentVariableIsSet("WAYLAND_DISPLAY"));
}

void prepareToolkit() {}

Result<std::string, WindowsEnd> reachablePlatform() {
  return choosePlatform(qgetenv("QT_QPA_PLATFORM").toStdString(),
                        {.x11Usable = [] { return x11Answers() && pluginLoads("platforms/libqxcb"); },
                         .waylandAnswers = waylandAnswers,
                         .waylandPluginLoads = [] { return pluginLoads("platforms/libqwayland-generic"); },
                         .windowsHangOnWayland = windowsHang});
}

}  // namespace nimbo
