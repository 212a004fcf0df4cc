// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "platform/linux/files/unique_fd.h"
#include "platform/main_loop.h"

namespace nimbo {

/// Hears from a Wayland compositor when the user has paused and when there is input again. It speaks
/// the few words of the protocol that this takes itself: a toolkit would cost more than all the rest
/// of the program. Main thread only.
class WaylandIdleWatch {
 public:
  struct Handlers {
    std::function<void()> paused;   ///< there has been no input for a while
    std::function<void()> resumed;  ///< there is, after `paused`
    std::function<void()> lost;     ///< the compositor cannot tell, or tells no more; called once
  };

  /// A "while" is `pause`. Any handler may destroy this object. Nothing is called from here.
  WaylandIdleWatch(MainLoop& loop, const std::string& socket, std::chrono::milliseconds pause, Handlers handlers);
  WaylandIdleWatch(const WaylandIdleWatch&) = delete;
  WaylandIdleWatch& operator=(const WaylandIdleWatch&) = delete;

 private:
  struct Global {
    std::uint32_t name;
    std::uint32_t version;
  };
  struct Globals {
    std::optional<Global> seat;
    std::optional<Global> notifier;      // ext-idle-notify-v1
    std::optional<Global> kwinNotifier;  // its forerunner, of sway before 1.8
  };

  void receive();
  void handle(std::uint32_t object, std::uint32_t event, std::string_view arguments);
  void announced(std::string_view arguments);
  [[nodiscard]] bool ask();
  void tell();

  const std::uint32_t pauseMilliseconds_;
  Handlers handlers_;
  UniqueFd socket_;
  std::string received_;
  Globals globals_;
  bool lost_ = false;
  bool pausing_ = false;
  bool toldPausing_ = false;
  Subscription events_;
};

}  // namespace nimbo
