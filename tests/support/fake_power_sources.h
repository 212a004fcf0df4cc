// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <utility>

#include "base/observer_list.h"
#include "platform/power_sources.h"

namespace nimbo {

/// A machine whose charger the test plugs in and pulls; without any power source at first. Its
/// subscriptions may outlive it.
class FakePowerSources final : public PowerSources {
 public:
  using Descriptions = std::optional<std::vector<PowerSourceDescription>>;

  [[nodiscard]] static PowerSourceDescription battery(const std::string& state, std::optional<int> percent) {
    return {kInternalBattery, state, percent, percent ? std::optional(100) : std::nullopt};
  }

  [[nodiscard]] Descriptions list() const override {
    ++readings;
    return now_;
  }

  [[nodiscard]] Subscription observe(std::function<void()> changed) override {
    ++subscriptions;
    ++*observers_;
    const auto entry = std::make_shared<Subscription>(list_.add(std::move(changed)));
    return Subscription([entry, observers = observers_] {
      entry->reset();
      --*observers;
    });
  }

  /// The system reports a change.
  void change(Descriptions descriptions) {
    now_ = std::move(descriptions);
    list_.notify();
  }

  /// Something changed, and the system does not tell.
  void changeSilently(Descriptions descriptions) { now_ = std::move(descriptions); }

  // Without a percentage the battery does not tell its capacities.
  void onBattery(std::optional<int> percent) { change(std::vector{battery(kBatteryPower, percent)}); }
  void onMains(std::optional<int> percent) { change(std::vector{battery("AC Power", percent)}); }
  /// A machine without a battery.
  void none() { change(std::vector<PowerSourceDescription>()); }
  /// The system does not answer.
  void unavailable() { change(std::nullopt); }

  [[nodiscard]] int observers() const { return *observers_; }  ///< that listen now

  int subscriptions = 0;     ///< ever made
  mutable int readings = 0;  ///< of `list`

 private:
  Descriptions now_{std::in_place};
  ObserverList<> list_;
  std::shared_ptr<int> observers_ = std::make_shared<int>(0);
};

}  // namespace nimbo
