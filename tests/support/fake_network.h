// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <utility>

#include "base/observer_list.h"
#include "platform/system_events.h"

namespace nimbo {

/// A network whose routes appear and settle when the test says so.
class FakeNetwork final : public Network {
 public:
  [[nodiscard]] Subscription observe(std::function<void()> connected) override {
    ++*observers_;
    auto hear = [connected = std::move(connected), waits = false](bool hasSettled) mutable {
      if (std::exchange(waits, !hasSettled) && hasSettled) connected();
    };
    const auto observer = std::make_shared<Subscription>(list_.add(std::move(hear)));
    return Subscription([observer, observers = observers_] {
      observer->reset();
      --*observers;
    });
  }

  void routeAppears() const { list_.notify(false); }
  void settle() const { list_.notify(true); }
  /// All of it.
  void appear() const {
    routeAppears();
    settle();
  }
  [[nodiscard]] int observers() const { return *observers_; }

 private:
  ObserverList<bool> list_;
  std::shared_ptr<int> observers_ = std::make_shared<int>(0);
};

}  // namespace nimbo
