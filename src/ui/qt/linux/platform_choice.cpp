// SPDX-License-Identifier: MIT
#include "ui/qt/linux/platform_choice.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <cstdlib>

namespace nimbo {
namespace {

std::string environment(const char* name) {
  const char* const value = std::getenv(name);
  return value != nullptr ? value : "";
}

bool socketAnswers(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.size() >= sizeof address.sun_path) return false;
  path.copy(address.sun_path, path.size());
  const int descriptor = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (descriptor < 0) return false;
  const bool connected = connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
  close(descriptor);
  return connected;
}

}  // namespace

Result<std::string, WindowsEnd> choosePlatform(const std::string& requested, const DisplayQuestions& ask) {
  const bool x11First = requested.starts_with("xcb");
  if (!requested.empty() && !x11First && !requested.starts_with("wayland")) return requested;
  if (!x11First && ask.waylandAnswers() && ask.windowsHangOnWayland() && ask.waylandPluginLoads()) return "wayland";
  if (ask.x11Usable()) return "xcb";
  if (!ask.waylandAnswers()) return tl::unexpected(WindowsEnd::noDisplay);
  if (!ask.waylandPluginLoads()) return tl::unexpected(WindowsEnd::noWaylandPlugin);
  return "wayland";
}

bool x11Answers() {
  if (environment("DISPLAY").empty()) return false;
  xcb_connection_t* const connection = xcb_connect(nullptr, nullptr);
  const bool answers = xcb_connection_has_error(connection) == 0;
  xcb_disconnect(connection);
  return answers;
}

bool waylandAnswers() {
  const std::string display = environment("WAYLAND_DISPLAY");
  if (display.empty()) return false;
  // Names are relative to the session's run-time folder unless they are whole paths.
  return socketAnswers(display.front() == '/' ? display : environment("XDG_RUNTIME_DIR") + "/" + display);
}

}  // namespace nimbo
