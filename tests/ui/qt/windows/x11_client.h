// SPDX-License-Identifier: MIT
#pragma once

#include <xcb/xcb.h>
#include <xcb/xtest.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace nimbo {

/// Another program on the display of the environment, and the hands of the user.
class X11Client {
 public:
  static constexpr std::uint8_t kEscape = 9;  ///< key codes of the server's default keyboard
  static constexpr std::uint8_t kControl = 37;
  static constexpr std::uint8_t kQ = 24;
  static constexpr std::uint8_t kW = 25;
  static constexpr std::uint8_t kA = 38;
  static constexpr std::uint8_t k4 = 13;
  static constexpr std::uint8_t k5 = 14;
  static constexpr std::uint8_t kSpace = 65;
  static constexpr std::uint8_t kReturn = 36;
  static constexpr std::uint8_t kTab = 23;
  static constexpr std::uint8_t kDown = 116;
  static constexpr std::uint8_t kLeftButton = 1;
  static constexpr std::uint8_t kRightButton = 3;
  static constexpr std::uint8_t kWheelUp = 4;
  static constexpr std::uint8_t kWheelDown = 5;

  X11Client() : connection_(xcb_connect(nullptr, nullptr)) {
    if (xcb_connection_has_error(connection_) != 0) throw std::runtime_error("no display");
    screen_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
  }
  ~X11Client() { xcb_disconnect(connection_); }
  X11Client(const X11Client&) = delete;
  X11Client& operator=(const X11Client&) = delete;

  void movePointer(std::int16_t x, std::int16_t y) { input(XCB_MOTION_NOTIFY, 0, x, y); }
  void click(std::int16_t x, std::int16_t y, std::uint8_t button = kLeftButton) {
    movePointer(x, y);
    input(XCB_BUTTON_PRESS, button);
    input(XCB_BUTTON_RELEASE, button);
  }
  void pressKey(std::uint8_t code) { input(XCB_KEY_PRESS, code); }
  void releaseKey(std::uint8_t code) { input(XCB_KEY_RELEASE, code); }
  void typeKey(std::uint8_t code) {
    pressKey(code);
    releaseKey(code);
  }

  /// The window without a parent that would get a click there.
  [[nodiscard]] xcb_window_t windowAt(std::int16_t x, std::int16_t y) {
    movePointer(x, y);
    const auto reply =
        owned(xcb_query_pointer_reply(connection_, xcb_query_pointer(connection_, screen_->root), nullptr));
    return reply != nullptr ? reply->child : xcb_window_t{XCB_WINDOW_NONE};
  }

  [[nodiscard]] bool grabPointer() {
    const auto request = xcb_grab_pointer(connection_, 0, screen_->root, XCB_EVENT_MASK_BUTTON_RELEASE,
                                          XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC, XCB_NONE, XCB_NONE, 0);
    const auto reply = owned(xcb_grab_pointer_reply(connection_, request, nullptr));
    return reply != nullptr && reply->status == XCB_GRAB_STATUS_SUCCESS;
  }
  void ungrabPointer() {
    xcb_ungrab_pointer(connection_, XCB_CURRENT_TIME);
    sync();
  }

  [[nodiscard]] xcb_window_t makeWindow(const std::string& type = "_NET_WM_WINDOW_TYPE_NORMAL") {
    const xcb_window_t window = xcb_generate_id(connection_);
    const std::uint32_t unmanaged = 1;
    xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window, screen_->root, 900, 500, 200, 200, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_OVERRIDE_REDIRECT, &unmanaged);
    const xcb_atom_t value = atom(type);
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, atom("_NET_WM_WINDOW_TYPE"), XCB_ATOM_ATOM, 32, 1,
                        &value);
    xcb_map_window(connection_, window);
    sync();
    return window;
  }

  /// Left, right, top, bottom; then, if it is partial, from where to where along each of these edges.
  void makePanel(const std::vector<std::uint32_t>& strut) {
    const xcb_window_t window = makeWindow("_NET_WM_WINDOW_TYPE_DOCK");
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window,
                        atom(strut.size() == 4 ? "_NET_WM_STRUT" : "_NET_WM_STRUT_PARTIAL"), XCB_ATOM_CARDINAL, 32,
                        static_cast<std::uint32_t>(strut.size()), strut.data());
    xcb_change_property(connection_, XCB_PROP_MODE_APPEND, screen_->root, atom("_NET_CLIENT_LIST"), XCB_ATOM_WINDOW, 32,
                        1, &window);
    sync();
  }

  /// As a window manager does.
  void announceActiveWindow(xcb_window_t window) {
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, screen_->root, atom("_NET_ACTIVE_WINDOW"), XCB_ATOM_WINDOW,
                        32, 1, &window);
    sync();
  }
  void focus(xcb_window_t window) {
    xcb_set_input_focus(connection_, XCB_INPUT_FOCUS_POINTER_ROOT, window, XCB_CURRENT_TIME);
    sync();
  }
  [[nodiscard]] bool hasWindowManager() {
    return !propertyOf(screen_->root, "_NET_SUPPORTING_WM_CHECK", XCB_ATOM_WINDOW).empty();
  }
  /// Asks the window manager, as a panel would, for one of the states of the Extended Window Manager Hints.
  void askFor(xcb_window_t window, const std::string& state) {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = atom("_NET_WM_STATE");
    message.data.data32[0] = 1;  // add
    message.data.data32[1] = atom(state);
    message.data.data32[3] = 2;  // as a pager
    xcb_send_event(connection_, 0, screen_->root,
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&message));
    sync();
  }
  [[nodiscard]] bool hasState(xcb_window_t window, const std::string& state) {
    const auto states = propertyOf(window, "_NET_WM_STATE", XCB_ATOM_ATOM);
    return std::find(states.begin(), states.end(), atom(state)) != states.end();
  }

  /// Left, right, top, bottom.
  [[nodiscard]] std::vector<std::uint32_t> frameExtents(xcb_window_t window) {
    return propertyOf(window, "_GTK_FRAME_EXTENTS", XCB_ATOM_CARDINAL);
  }

  /// Hears from now on what windows ask a window manager for, without doing it.
  void listenAsWindowManager() {
    const std::uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(connection_, screen_->root, XCB_CW_EVENT_MASK, &mask);
    sync();
  }
  /// The window that has asked for the focus as pagers do, 0 if none has since the last call.
  [[nodiscard]] xcb_window_t takeActivationFromPager() {
    const xcb_atom_t activate = atom("_NET_ACTIVE_WINDOW");
    while (const auto event = owned(xcb_poll_for_event(connection_))) {
      const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(*event);
      const bool isMessage = (event->response_type & 0x7F) == XCB_CLIENT_MESSAGE;
      if (isMessage && message.type == activate && message.data.data32[0] == 2) return message.window;
    }
    return XCB_WINDOW_NONE;
  }

  void becomeCompositor() {
    xcb_set_selection_owner(connection_, makeWindow(), atom("_NET_WM_CM_S0"), XCB_CURRENT_TIME);
    sync();
  }

  [[nodiscard]] bool hasCompositor() {
    const auto request = xcb_get_selection_owner(connection_, atom("_NET_WM_CM_S0"));
    const auto reply = owned(xcb_get_selection_owner_reply(connection_, request, nullptr));
    return reply != nullptr && reply->owner != XCB_WINDOW_NONE;
  }

  /// What the screen shows: 0xRRGGBB.
  [[nodiscard]] std::uint32_t pixel(std::int16_t x, std::int16_t y) {
    const auto request =
        xcb_get_image(connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, screen_->root, x, y, 1, 1, ~std::uint32_t{0});
    const auto reply = owned(xcb_get_image_reply(connection_, request, nullptr));
    if (reply == nullptr) throw std::runtime_error("no image");
    return *reinterpret_cast<const std::uint32_t*>(xcb_get_image_data(reply.get())) & 0xFFFFFF;
  }

 private:
  struct Free {
    void operator()(void* memory) const { std::free(memory); }
  };
  template <class Reply>
  static std::unique_ptr<Reply, Free> owned(Reply* reply) {
    return std::unique_ptr<Reply, Free>(reply);
  }

  void input(std::uint8_t type, std::uint8_t detail, std::int16_t x = 0, std::int16_t y = 0) {
    xcb_test_fake_input(connection_, type, detail, XCB_CURRENT_TIME, screen_->root, x, y, 0);
    sync();
  }
  [[nodiscard]] std::vector<std::uint32_t> propertyOf(xcb_window_t window, const std::string& name, xcb_atom_t type) {
    const auto request = xcb_get_property(connection_, 0, window, atom(name), type, 0, 32);
    const auto reply = owned(xcb_get_property_reply(connection_, request, nullptr));
    if (reply == nullptr || reply->format != 32) return {};
    const auto* const values = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    return {values, values + reply->value_len};
  }
  void sync() { owned(xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr)); }
  [[nodiscard]] xcb_atom_t atom(const std::string& name) {
    const auto request = xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const auto reply = owned(xcb_intern_atom_reply(connection_, request, nullptr));
    if (reply == nullptr) throw std::runtime_error("no atom");
    return reply->atom;
  }

  xcb_connection_t* connection_;
  xcb_screen_t* screen_ = nullptr;
};

}  // namespace nimbo
