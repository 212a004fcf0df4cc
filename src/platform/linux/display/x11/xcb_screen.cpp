// SPDX-License-Identifier: MIT
#include "platform/linux/display/x11/xcb_screen.h"

#include <signal.h>
#include <xcb/dpms.h>
#include <xcb/xcb.h>

#include <chrono>
#include <cstdlib>
#include <memory>
#include <system_error>
#include <thread>
#include <utility>

namespace nimbo {
namespace {

// A server that works needs a millisecond or two.
constexpr std::chrono::milliseconds kLongestWaitForServer{400};

template <class Reply>
std::shared_ptr<Reply> owned(Reply* reply) {
  return {reply, std::free};
}

bool done(xcb_connection_t* connection, xcb_void_cookie_t request) {
  const auto error = owned(xcb_request_check(connection, request));
  return error == nullptr && xcb_connection_has_error(connection) == 0;
}

bool turnOffOn(xcb_connection_t* connection) {
  const auto* const extension = xcb_get_extension_data(connection, &xcb_dpms_id);
  if (extension == nullptr || extension->present == 0) return false;
  const auto capable = owned(xcb_dpms_capable_reply(connection, xcb_dpms_capable(connection), nullptr));
  const auto info = owned(xcb_dpms_info_reply(connection, xcb_dpms_info(connection), nullptr));
  if (capable == nullptr || capable->capable == 0 || info == nullptr) return false;
  // Power management that the user has switched off has to be on for this. Its time-outs are taken
  // out first, so that the display still never goes off by itself afterwards.
  if (info->state == 0) {
    xcb_dpms_set_timeouts(connection, 0, 0, 0);
    xcb_dpms_enable(connection);
  }
  return done(connection, xcb_dpms_force_level_checked(connection, XCB_DPMS_DPMS_MODE_OFF));
}

}  // namespace

bool XcbScreen::resetScreenSaver() {
  return carryOut([](xcb_connection_t* connection) {
    return done(connection, xcb_force_screen_saver_checked(connection, XCB_SCREEN_SAVER_RESET));
  });
}

bool XcbScreen::turnOff() { return carryOut(turnOffOn); }

bool XcbScreen::carryOut(Request request) {
  using std::chrono::milliseconds;
  if (outcome_.valid() && outcome_.wait_for(milliseconds::zero()) != std::future_status::ready) return false;
  std::packaged_task<bool()> task([display = display_, request] {
    // Writing to a server that has gone raises SIGPIPE, for the writing thread.
    sigset_t all;
    sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, nullptr);
    const std::shared_ptr<xcb_connection_t> connection(xcb_connect(display.c_str(), nullptr), xcb_disconnect);
    return xcb_connection_has_error(connection.get()) == 0 && request(connection.get());
  });
  outcome_ = task.get_future();
  try {
    std::thread(std::move(task)).detach();
  } catch (const std::system_error&) {
    outcome_ = {};
    return false;
  }
  if (outcome_.wait_for(kLongestWaitForServer) != std::future_status::ready) return false;
  return outcome_.get();
}

}  // namespace nimbo
