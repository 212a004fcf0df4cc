// SPDX-License-Identifier: MIT
#pragma once

#include <xcb/xcb.h>
#include <xcb/xtest.h>

#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>

namespace nimbo {

/// Another program on the display of the environment, and the hands of the user.
class X11Client {
 public:
  static constexpr std::uint8_t kEscape = 9;  ///< key codes of the server's default keyboard
  static constexpr std::uint8_t kControl = 37;
  static constexpr std::uint8_t kQ = 24;
  static constexpr std::uint8_t kA = 38;
  static constexpr std::uint8_t k4 = 13;
  static constexpr std::uint8_t k5 = 14;
  static constexpr std::uint8_t kSpace = 65;
  static constexpr std::uint8_t kReturn = 36;
  static constexpr std::uint8_t kTab = 23;
  static constexpr std::uint8_t kDown = 116;
  static constexpr std::uint8_t kLeftButton = 1;
  static constexpr std::uint8_t kRightButton = 3;

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
  void becomeCompositor() {
    xcb_set_selection_owner(connection_, makeWindow(), atom("_NET_WM_CM_S0"), XCB_CURRENT_TIME);
    sync();
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
