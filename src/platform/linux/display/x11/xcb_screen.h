// SPDX-License-Identifier: MIT
#pragma once

#include <future>
#include <string>
#include <utility>

#include "platform/linux/display/display_modules.h"

struct xcb_connection_t;

namespace nimbo {

/// An X server spoken to with xcb, on a connection for each call. xcb waits without limit, so that
/// happens on a thread of its own, which is given up when the server hangs.
class XcbScreen final : public X11Screen {
 public:
  /// `display` in the form of DISPLAY.
  explicit XcbScreen(std::string display) : display_(std::move(display)) {}

  [[nodiscard]] bool resetScreenSaver() override;
  [[nodiscard]] bool turnOff() override;

 private:
  using Request = bool (*)(xcb_connection_t* connection);
  bool carryOut(Request request);

  const std::string display_;
  std::future<bool> outcome_;  // of the last request
};

}  // namespace nimbo
