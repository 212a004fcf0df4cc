// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <utility>

#include "base/observer_list.h"
#include "platform/system_events.h"

namespace nimbo {

/// A network that appears when the test says so.
class FakeNetwork final : public Network {
 public:
  [[nodiscard]] Subscription observe(std::function<void()> connected) override {
    ++*observers_;
    const auto observer = std::make_shared<Subscription>(list_.add(std::move(connected)));
    return Subscription([observer, observers = observers_] {
      observer->reset();
      --*observers;
    });
  }

  void appear() const { list_.notify(); }
  [[nodiscard]] int observers() const { return *observers_; }

 private:
  ObserverList<> list_;
  std::shared_ptr<int> observers_ = std::make_shared<int>(0);
};

}  // namespace nimbo
