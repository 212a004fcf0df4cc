// SPDX-License-Identifier: MIT
#include "ui/qt/linux/x11_window_system.h"

#include <QCoreApplication>
#include <QSurfaceFormat>
#include <QWidget>
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <utility>

namespace nimbo {
namespace {

struct Free {
  void operator()(void* memory) const { std::free(memory); }
};

template <class Reply>
std::unique_ptr<Reply, Free> owned(Reply* reply) {
  return std::unique_ptr<Reply, Free>(reply);
}

int defaultScreenNumber() {
  char* host = nullptr;
  int display = 0;
  int screen = 0;
  if (xcb_parse_display(nullptr, &host, &display, &screen) != 0) std::free(host);
  return screen;
}

xcb_window_t rootOf(xcb_connection_t& connection, int screenNumber) {
  auto screens = xcb_setup_roots_iterator(xcb_get_setup(&connection));
  for (; screens.rem > 1 && screenNumber > 0; --screenNumber) xcb_screen_next(&screens);
  return screens.data->root;
}

/// What a strut takes from a screen; one that leaves nothing of it belongs to the screen behind.
QMargins marginsOn(const QRect& screen, const QRect& root, const std::vector<std::uint32_t>& strut) {
  const auto at = [&](std::size_t index) { return static_cast<int>(std::min(strut[index], std::uint32_t{32767})); };
  const auto alongX = [&](std::size_t index) { return at(index) <= screen.right() && at(index + 1) >= screen.left(); };
  const auto alongY = [&](std::size_t index) { return at(index) <= screen.bottom() && at(index + 1) >= screen.top(); };
  const auto taken = [](bool beside, int depth, int extent) {
    return beside && depth > 0 && depth < extent ? depth : 0;
  };
  return {taken(at(0) > 0 && alongY(4), at(0) - screen.left(), screen.width()),
          taken(at(2) > 0 && alongX(8), at(2) - screen.top(), screen.height()),
          taken(at(1) > 0 && alongY(6), screen.right() - (root.right() - at(1)), screen.width()),
          taken(at(3) > 0 && alongX(10), screen.bottom() - (root.bottom() - at(3)), screen.height())};
}

/// Unmanaged, and not blocked by alerts, as tooltips are.
class ClickCatcher final : public QWindow {
 public:
  explicit ClickCatcher(xcb_connection_t& connection) : connection_(connection) {
    setFlags(Qt::ToolTip | Qt::FramelessWindowHint);
    QSurfaceFormat format;
    format.setAlphaBufferSize(8);
    setFormat(format);
  }

 protected:
  // Cleared by the server, since painting takes a picture as large as all screens; Xwayland shows no empty window.
  void exposeEvent(QExposeEvent* /*event*/) override {
    const auto window = static_cast<xcb_window_t>(winId());
    const std::uint32_t transparent = 0;
    xcb_change_window_attributes(&connection_, window, XCB_CW_BACK_PIXEL, &transparent);
    xcb_clear_area(&connection_, 0, window, 0, 0, 0, 0);
    xcb_flush(&connection_);
  }

 private:
  xcb_connection_t& connection_;
};

}  // namespace

X11WindowSystem::X11WindowSystem(xcb_connection_t& connection, bool waylandSession)
    : connection_(connection), waylandSession_(waylandSession) {
  const int screen = defaultScreenNumber();
  root_ = rootOf(connection, screen);
  // Extended Window Manager Hints, "Compositing Managers".
  compositorSelection_ = atom("_NET_WM_CM_S" + std::to_string(screen));
  activeWindowAtom_ = atom("_NET_ACTIVE_WINDOW");
}

bool X11WindowSystem::compositing() const {
  const auto request = xcb_get_selection_owner(&connection_, compositorSelection_);
  const auto reply = owned(xcb_get_selection_owner_reply(&connection_, request, nullptr));
  return reply != nullptr && reply->owner != XCB_WINDOW_NONE;
}

// As windows do that draw their own title bar. In the server's pixels, which the toolkit scales.
void X11WindowSystem::announceMargins(QWidget& window, const QMargins& margins) {
  const QMargins pixels = margins * window.devicePixelRatioF();
  const std::array<std::int32_t, 4> extents{pixels.left(), pixels.right(), pixels.top(), pixels.bottom()};
  xcb_change_property(&connection_, XCB_PROP_MODE_REPLACE, static_cast<xcb_window_t>(window.winId()),
                      atom("_GTK_FRAME_EXTENTS"), XCB_ATOM_CARDINAL, 32, extents.size(), extents.data());
}

// A Wayland compositor tells X11 programs nothing of clicks on the desktop, on its panels and on windows of others.
std::unique_ptr<QWindow> X11WindowSystem::makeClickCatcher() {
  return waylandSession_ ? std::make_unique<ClickCatcher>(connection_) : nullptr;
}

// The toolkit believes that it has the pointer whenever the server answers at all, so ask
// the server itself: take both and let go again.
bool X11WindowSystem::inputIsFree() {
  if (!grabPointer()) return false;
  xcb_ungrab_pointer(&connection_, XCB_CURRENT_TIME);

  const auto keyboardRequest =
      xcb_grab_keyboard(&connection_, 0, root_, XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
  const auto keyboard = owned(xcb_grab_keyboard_reply(&connection_, keyboardRequest, nullptr));
  if (keyboard == nullptr || keyboard->status != XCB_GRAB_STATUS_SUCCESS) return false;
  xcb_ungrab_keyboard(&connection_, XCB_CURRENT_TIME);
  return true;
}

bool X11WindowSystem::grabPointer() {
  const auto request = xcb_grab_pointer(&connection_, 0, root_, 0, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC, XCB_NONE,
                                        XCB_NONE, XCB_CURRENT_TIME);
  const auto reply = owned(xcb_grab_pointer_reply(&connection_, request, nullptr));
  return reply != nullptr && reply->status == XCB_GRAB_STATUS_SUCCESS;
}

Subscription X11WindowSystem::holdPointer() {
  if (!grabPointer()) return {};
  return Subscription([this] {
    xcb_ungrab_pointer(&connection_, XCB_CURRENT_TIME);
    xcb_flush(&connection_);
  });
}

// A Wayland compositor tells X11 programs of no windows but their own kind; there the dashboard is one that has the
// keyboard focus, and loses it.
Subscription X11WindowSystem::observeOtherActivation(std::function<void()> activated) {
  if (waylandSession_) return {};
  otherActivated_ = std::move(activated);
  activeWindow_ = property(root_, activeWindowAtom_, XCB_ATOM_WINDOW);
  QCoreApplication::instance()->installNativeEventFilter(this);
  return Subscription([this] {
    QCoreApplication::instance()->removeNativeEventFilter(this);
    otherActivated_ = nullptr;
  });
}

// A menu window is in no list of windows. The window manager forgets that whenever the window goes, and hears of it by
// the property only before the window comes; the toolkit adds its own states.
void X11WindowSystem::hang(QWidget& window, const QRect& frame, const Hanging& /*hanging*/) {
  window.setGeometry(frame);
  if (window.isVisible()) return;
  const std::array<xcb_atom_t, 2> states{atom("_NET_WM_STATE_SKIP_TASKBAR"), atom("_NET_WM_STATE_SKIP_PAGER")};
  xcb_change_property(&connection_, XCB_PROP_MODE_REPLACE, static_cast<xcb_window_t>(window.winId()),
                      atom("_NET_WM_STATE"), XCB_ATOM_ATOM, 32, states.size(), states.data());
}

// Extended Window Manager Hints, "_NET_WM_STRUT_PARTIAL": how deep a panel reaches into the root window from the left,
// right, top and bottom, then from where to where along each of these edges.
QMargins X11WindowSystem::panelMargins(const QRect& screen) const {
  const auto geometry = owned(xcb_get_geometry_reply(&connection_, xcb_get_geometry(&connection_, root_), nullptr));
  if (geometry == nullptr) return {};
  const QRect root(0, 0, geometry->width, geometry->height);
  const xcb_atom_t partial = atom("_NET_WM_STRUT_PARTIAL");
  const xcb_atom_t whole = atom("_NET_WM_STRUT");
  QMargins margins;
  for (const xcb_window_t window : properties(root_, atom("_NET_CLIENT_LIST"), XCB_ATOM_WINDOW)) {
    auto strut = properties(window, partial, XCB_ATOM_CARDINAL);
    if (strut.size() != 12) {
      strut = properties(window, whole, XCB_ATOM_CARDINAL);
      if (strut.size() != 4) continue;
      constexpr std::uint32_t kEnd = 32767;
      strut.insert(strut.end(), {0, kEnd, 0, kEnd, 0, kEnd, 0, kEnd});
    }
    margins = margins | marginsOn(screen, root, strut);
  }
  return margins;
}

// The toolkit's request bears the time of the last input that this program got, while the click that
// asked for the window went to a panel; window managers that guard the focus refuse one so old. A request
// like a pager's (Extended Window Manager Hints, "_NET_ACTIVE_WINDOW") counts as the user's own request.
void X11WindowSystem::activate(QWidget& window) {
  window.activateWindow();
  constexpr std::uint32_t kFromPager = 2;
  xcb_client_message_event_t message{};
  message.response_type = XCB_CLIENT_MESSAGE;
  message.format = 32;
  message.window = static_cast<xcb_window_t>(window.winId());
  message.type = activeWindowAtom_;
  message.data.data32[0] = kFromPager;
  message.data.data32[1] = XCB_CURRENT_TIME;
  xcb_send_event(&connection_, 0, root_, XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                 reinterpret_cast<const char*>(&message));
  xcb_flush(&connection_);
}

// The toolkit itself listens to property changes of the root window.
bool X11WindowSystem::nativeEventFilter(const QByteArray& eventType, void* message, qintptr* /*result*/) {
  if (eventType != "xcb_generic_event_t") return false;
  const auto* const event = static_cast<const xcb_generic_event_t*>(message);
  if ((event->response_type & 0x7F) != XCB_PROPERTY_NOTIFY) return false;
  const auto* const change = static_cast<const xcb_property_notify_event_t*>(message);
  if (change->window == root_ && change->atom == activeWindowAtom_) activeWindowChanged();
  return false;
}

void X11WindowSystem::activeWindowChanged() {
  const xcb_window_t active = property(root_, activeWindowAtom_, XCB_ATOM_WINDOW);
  if (active == activeWindow_ || active == XCB_WINDOW_NONE) return;
  // GNOME's shell leaves no window active while its menus are open, and then gives the focus back.
  if (std::exchange(activeWindow_, active) == XCB_WINDOW_NONE) return;
  // A panel may take the focus because of the very click that opened the menu.
  if (QWidget::find(active) != nullptr || isPartOfDesktop(active)) return;
  if (const auto activated = otherActivated_) activated();
}

xcb_atom_t X11WindowSystem::atom(const std::string& name) const {
  const auto request = xcb_intern_atom(&connection_, 0, static_cast<std::uint16_t>(name.size()), name.data());
  const auto reply = owned(xcb_intern_atom_reply(&connection_, request, nullptr));
  return reply != nullptr ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

std::vector<std::uint32_t> X11WindowSystem::properties(xcb_window_t window, xcb_atom_t name, xcb_atom_t type) const {
  constexpr std::uint32_t kMost = 4096;
  const auto request = xcb_get_property(&connection_, 0, window, name, type, 0, kMost);
  const auto reply = owned(xcb_get_property_reply(&connection_, request, nullptr));
  if (reply == nullptr || reply->format != 32) return {};
  const auto* const values = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
  return {values, values + reply->value_len};
}

std::uint32_t X11WindowSystem::property(xcb_window_t window, xcb_atom_t name, xcb_atom_t type) const {
  const auto values = properties(window, name, type);
  return values.empty() ? 0 : values.front();
}

bool X11WindowSystem::isPartOfDesktop(xcb_window_t window) const {
  const auto type = property(window, atom("_NET_WM_WINDOW_TYPE"), XCB_ATOM_ATOM);
  return type == atom("_NET_WM_WINDOW_TYPE_DOCK") || type == atom("_NET_WM_WINDOW_TYPE_DESKTOP");
}

}  // namespace nimbo
