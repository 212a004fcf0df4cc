// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <list>
#include <memory>

#include "base/subscription.h"
#include "platform/main_loop.h"

namespace nimbo {

/// Lets items register with the tray one after the other, a quarter of a second apart. Of several
/// items that come together xfce4-panel 4.18 now and then shows only one, for good; it does not when
/// each has been laid out before the next comes. Main thread only.
class RegistrationPacer {
 public:
  /// `loop` outlives the pacer, and the pacer the subscriptions.
  explicit RegistrationPacer(MainLoop& loop) : loop_(loop) {}
  RegistrationPacer(const RegistrationPacer&) = delete;
  RegistrationPacer& operator=(const RegistrationPacer&) = delete;

  /// Calls `turn` once: at once, or when those who asked before have had their time. Destroying the
  /// subscription gives the turn up.
  [[nodiscard]] Subscription request(std::function<void()> turn);

 private:
  using Turn = std::shared_ptr<std::function<void()>>;

  void startPause();
  void pauseIsOver();

  MainLoop& loop_;
  std::list<Turn> waiting_;
  Subscription pause_;  // set while the last one has its time
};

}  // namespace nimbo
