// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <functional>

#include "base/subscription.h"
#include "platform/clock.h"
#include "platform/main_loop.h"
#include "platform/user_defaults.h"

namespace nimbo {

/// Whether and when to look for updates unasked: once a day, for as long as the user wants that. Both
/// are kept among the preferences. Main thread only.
class UpdateSchedule {
 public:
  /// They outlive it.
  struct Services {
    UserDefaults& defaults;
    const Clock& clock;
    MainLoop& loop;
  };

  /// `due` is called from the main loop at each time a check is due.
  UpdateSchedule(const Services& services, std::function<void()> due);

  /// Off until the user has switched it on.
  [[nodiscard]] bool enabled() const;
  void setEnabled(bool on);

  /// A check begins now, for whatever reason: the next one is due in a day.
  void checkBegins();

 private:
  using Time = std::chrono::system_clock::time_point;

  [[nodiscard]] Time nextCheck(Time now) const;
  void arm(Time when);
  void rearm();
  void fire();

  Services services_;
  std::function<void()> due_;
  Subscription timer_;
};

}  // namespace nimbo
