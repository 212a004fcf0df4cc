// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include "platform/linux/display/display_modules.h"

namespace nimbo {

/// An X server that counts what it is told; it outlives the screens that it gives.
class FakeX11Screen {
 public:
  [[nodiscard]] X11ScreenMaker maker() {
    return [this]() -> std::unique_ptr<X11Screen> {
      ++made;
      return std::make_unique<Screen>(*this);
    };
  }

  bool works = true;
  int made = 0;
  int resets = 0;
  int turnedOff = 0;

 private:
  class Screen final : public X11Screen {
   public:
    explicit Screen(FakeX11Screen& server) : server_(server) {}
    [[nodiscard]] bool resetScreenSaver() override {
      server_.resets += server_.works ? 1 : 0;
      return server_.works;
    }
    [[nodiscard]] bool turnOff() override {
      server_.turnedOff += server_.works ? 1 : 0;
      return server_.works;
    }

   private:
    FakeX11Screen& server_;
  };
};

}  // namespace nimbo
