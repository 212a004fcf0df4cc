// SPDX-License-Identifier: MIT
#pragma once

#include <ext-idle-notify-v1-client.h>
#include <idle-client.h>
#include <wayland-client.h>
#include <wlr-output-power-management-unstable-v1-client.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <string>

#include "platform/main_loop.h"

namespace nimbo {

/// A connection to a Wayland compositor, with what it takes to turn its outputs off: the input that it sees, and the
/// power of its outputs. Main thread only.
class WaylandSession {
 public:
  /// `handled` is called later, each time after events that may have changed what is asked below, with whether the
  /// connection still stands. It may destroy this object, and has to when the connection is lost.
  WaylandSession(MainLoop& loop, const std::string& socket, std::function<void(bool connected)> handled);
  WaylandSession(const WaylandSession&) = delete;
  WaylandSession& operator=(const WaylandSession&) = delete;

  /// Asks for an answer, which comes when all before it has been carried out. The first is asked for from the start.
  void askForAnswer();
  [[nodiscard]] bool answered() const { return answered_; }
  /// Asks, and waits for the answer for at most `limit`, without calling `handled`.
  void waitForAnswer(std::chrono::milliseconds limit);

  /// Whether the compositor has all the rest; known from the first answer on.
  [[nodiscard]] bool canTurnOutputsOff() const;

  /// Follows, from now on, whether there has been no input for `pause`.
  void watchInput(std::chrono::milliseconds pause);
  [[nodiscard]] bool inputPauses() const { return inputPauses_; }

  void turnOutputs(bool on);
  /// Whether not even one output was turned off or on.
  [[nodiscard]] bool outputsRefuse() const;

 private:
  struct Listeners;
  struct Disconnect {
    void operator()(wl_display* display) const { wl_display_disconnect(display); }
  };
  /// Ends this side of an object; the compositor's goes with the connection.
  struct Release {
    template <class Proxy>
    void operator()(Proxy* proxy) const {
      wl_proxy_destroy(reinterpret_cast<wl_proxy*>(proxy));
    }
  };
  template <class Proxy>
  using Owned = std::unique_ptr<Proxy, Release>;

  struct Output {
    std::uint32_t name;
    Owned<wl_output> output;
    Owned<zwlr_output_power_v1> power = {};
    bool refuses = false;
  };

  [[nodiscard]] bool handleEvents();
  void announced(std::uint32_t name, const std::string& interface, std::uint32_t version);
  template <class Proxy>
  [[nodiscard]] Owned<Proxy> bind(std::uint32_t name, const wl_interface& interface, std::uint32_t version = 1) const;

  const std::function<void(bool connected)> handled_;
  const std::unique_ptr<wl_display, Disconnect> display_;  // before all of its objects, because it goes last
  Owned<wl_registry> registry_;
  Owned<wl_seat> seat_;
  Owned<ext_idle_notifier_v1> notifier_;
  Owned<ext_idle_notification_v1> notification_;
  Owned<org_kde_kwin_idle> kwinNotifier_;  // the forerunner, which sway before 1.8 has
  Owned<org_kde_kwin_idle_timeout> kwinNotification_;
  Owned<zwlr_output_power_manager_v1> powerManager_;
  std::list<Output> outputs_;  // none of which moves
  Owned<wl_callback> answer_;
  bool answered_ = false;
  bool inputPauses_ = false;
  Subscription events_;
};

}  // namespace nimbo
