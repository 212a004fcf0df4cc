// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <list>
#include <memory>
#include <string>

#include "base/subscription.h"
#include "platform/linux/bus/bus_name_watch.h"
#include "platform/main_loop.h"

namespace nimbo {

/// Follows the program that holds the tray, and lets items register with it in the order in which they were made, a
/// quarter of a second apart: trays line items up as they come, and of several that come together xfce4-panel 4.18 now
/// and then shows only one, for good, unless each has been laid out before the next comes. Main thread only.
class TrayWatch {
 public:
  /// `loop` outlives the watch, and the watch the subscriptions. Without a bus no tray ever comes.
  TrayWatch(sd_bus* session, MainLoop& loop);
  TrayWatch(const TrayWatch&) = delete;
  TrayWatch& operator=(const TrayWatch&) = delete;

  /// Calls `turn` with the tray's unique name when it is this one's turn, from the call itself if that is now, and
  /// with an empty text when the tray has gone; so again for every tray that comes.
  [[nodiscard]] Subscription attend(std::function<void(const std::string& tray)> turn);

  /// Calls `absent` once if no tray has come within five seconds from now.
  void onAbsence(std::function<void()> absent);

 private:
  struct Attendant {
    std::function<void(const std::string& tray)> turn;
    bool hadTurn = false;
  };

  void trayChanged(const std::string& owner);
  void nextTurn();

  MainLoop& loop_;
  std::string tray_;
  std::list<std::shared_ptr<Attendant>> attendants_;
  Subscription pause_;     // set while the last one has its time
  Subscription patience_;  // set while a tray may still be on its way
  BusNameWatch watcher_;
};

}  // namespace nimbo
