// SPDX-License-Identifier: MIT
// What every view of the machine's power sources promises (platform/power_sources.h).
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "platform/power_sources.h"

namespace nimbo {

/// A laptop on mains with its battery at 80 %, and what the system tells of it.
struct PowerSourcesHost {
  virtual ~PowerSourcesHost() = default;
  [[nodiscard]] virtual PowerSources& sources() = 0;
  virtual void destroySources() = 0;
  virtual void unplug() = 0;
  virtual void drainTo(int percent) = 0;
  /// Whether it becomes so within some seconds, while what the system tells comes in.
  [[nodiscard]] virtual bool becomes(const std::function<bool()>& so) = 0;
  /// What is on its way already has come in afterwards.
  virtual void settle() = 0;
};

using PowerSourcesHostMaker = std::unique_ptr<PowerSourcesHost> (*)();

template <class Host>
std::unique_ptr<PowerSourcesHost> makePowerSourcesHost() {
  return std::make_unique<Host>();
}

class PowerSourcesContract : public testing::TestWithParam<PowerSourcesHostMaker> {
 protected:
  using Descriptions = std::vector<PowerSourceDescription>;

  [[nodiscard]] Subscription count() {
    return host->sources().observe([this] { ++changes; });
  }
  [[nodiscard]] bool changesBecome(int expected) const {
    return host->becomes([&] { return changes >= expected; }) && changes == expected;
  }

  const std::unique_ptr<PowerSourcesHost> host = GetParam()();
  int changes = 0;
};

/// "now of maximum" in whatever unit is the same share.
inline double share(const PowerSourceDescription& source) {
  return static_cast<double>(source.currentCapacity.value()) / static_cast<double>(source.maxCapacity.value());
}

TEST_P(PowerSourcesContract, BatteryIsDescribed) {
  const auto list = host->sources().list();
  ASSERT_TRUE(list && list->size() == 1);
  EXPECT_EQ(list->front().type, kInternalBattery);
  EXPECT_EQ(list->front().powerSourceState, "AC Power");
  EXPECT_DOUBLE_EQ(share(list->front()), 0.8);
}

TEST_P(PowerSourcesContract, PulledChargerIsToldAndTheNewStateRead) {
  std::optional<Descriptions> seen;
  const auto observer = host->sources().observe([&] {
    ++changes;
    seen = host->sources().list();
  });
  host->unplug();
  ASSERT_TRUE(changesBecome(1));
  EXPECT_EQ(seen.value().at(0).powerSourceState, kBatteryPower);
  host->drainTo(79);
  ASSERT_TRUE(changesBecome(2));
  EXPECT_DOUBLE_EQ(share(seen.value().at(0)), 0.79);
}

TEST_P(PowerSourcesContract, NothingIsToldWhileNothingHappens) {
  const auto observer = count();
  host->settle();
  EXPECT_EQ(changes, 0);
}

TEST_P(PowerSourcesContract, EveryObserverIsTold) {
  const auto first = count();
  const auto second = count();
  host->unplug();
  EXPECT_TRUE(changesBecome(2));
}

TEST_P(PowerSourcesContract, DroppedObserverIsNotTold) {
  auto dropped = host->sources().observe([] { ADD_FAILURE(); });
  const auto observer = count();
  dropped.reset();
  host->unplug();
  EXPECT_TRUE(changesBecome(1));
}

TEST_P(PowerSourcesContract, ListeningStartsAgainWithTheNextObserver) {
  auto observer = count();
  observer.reset();
  host->unplug();
  observer = count();
  host->drainTo(79);
  EXPECT_TRUE(changesBecome(1));
}

TEST_P(PowerSourcesContract, LastObserverMayGoAwayWhileItIsTold) {
  Subscription observer;
  observer = host->sources().observe([&] {
    ++changes;
    observer.reset();
  });
  host->unplug();
  ASSERT_TRUE(changesBecome(1));
  host->drainTo(79);
  host->settle();
  EXPECT_EQ(changes, 1);
}

TEST_P(PowerSourcesContract, ObserverMayOutliveTheSources) {
  auto observer = count();
  host->destroySources();
  observer.reset();
  host->unplug();
  host->settle();
  EXPECT_EQ(changes, 0);
}

}  // namespace nimbo
