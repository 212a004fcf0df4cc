// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <list>
#include <memory>

#include "base/subscription.h"
#include "platform/linux/loop/sd_event_handles.h"

namespace nimbo {

/// Lets items register with the tray one after the other, a quarter of a second apart. Of several
/// items that come together xfce4-panel 4.18 now and then shows only one, for good; it does not when
/// each has been laid out before the next comes. Main thread only.
class RegistrationPacer {
 public:
  /// `event` outlives the pacer, and the pacer the subscriptions.
  explicit RegistrationPacer(sd_event* event) : event_(event) {}
  RegistrationPacer(const RegistrationPacer&) = delete;
  RegistrationPacer& operator=(const RegistrationPacer&) = delete;

  /// Calls `turn` once: at once, or when those who asked before have had their time. Destroying the
  /// subscription gives the turn up.
  [[nodiscard]] Subscription request(std::function<void()> turn);

 private:
  using Turn = std::shared_ptr<std::function<void()>>;

  static int onPaceOver(sd_event_source* source, std::uint64_t due, void* self);
  void startPace();

  sd_event* const event_;
  std::list<Turn> waiting_;
  UniqueHandle<SdEventSourceTraits> pace_;  // set while the last one has its time
};

}  // namespace nimbo
