// SPDX-License-Identifier: MIT
#include "ui/qt/windows/window_system.h"

#include <QGuiApplication>
#include <QPluginLoader>
#include <QWidget>

#include "ui/qt/linux/platform_choice.h"
#include "ui/qt/linux/x11_window_system.h"

namespace nimbo {
namespace {

/// Wayland without X11, which composes always and tells nothing of other windows; or a toolkit
/// platform without a desktop around it.
class PlainWindowSystem final : public WindowSystem {
 public:
  [[nodiscard]] bool compositing() const override { return true; }
  [[nodiscard]] bool popupsHearAllClicks() const override {
    return !QGuiApplication::platformName().startsWith("wayland");
  }
  [[nodiscard]] bool inputIsFree() override { return true; }
  [[nodiscard]] Subscription observeOtherActivation(std::function<void()> /*activated*/) override { return {}; }
  void activate(QWidget& window) override { window.activateWindow(); }
};

// Missing plugins, or libraries that they need, end the process as a missing display does.
bool pluginLoads(const char* name) { return QPluginLoader(name).load(); }

}  // namespace

std::unique_ptr<WindowSystem> makeWindowSystem() {
  const auto* const x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  // The invisible platform claims to be X11 too, but has no connection.
  xcb_connection_t* const connection = x11 != nullptr ? x11->connection() : nullptr;
  if (connection == nullptr) return std::make_unique<PlainWindowSystem>();
  return std::make_unique<X11WindowSystem>(*connection, qEnvironmentVariableIsSet("WAYLAND_DISPLAY"));
}

std::optional<std::string> reachablePlatform() {
  const std::string requested = qgetenv("QT_QPA_PLATFORM").toStdString();
  return choosePlatform(
      requested, [] { return x11Answers() && pluginLoads("platforms/libqxcb"); },
      [] { return waylandAnswers() && pluginLoads("platforms/libqwayland-generic"); });
}

}  // namespace nimbo
