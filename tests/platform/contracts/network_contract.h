// SPDX-License-Identifier: MIT
// What every view of the machine's way to the world promises (platform/system_events.h).
#pragma once

#include <gtest/gtest.h>

#include <memory>

#include "platform/system_events.h"

namespace nimbo {

/// A machine without a way to the world.
struct NetworkHost {
  virtual ~NetworkHost() = default;
  [[nodiscard]] virtual Network& network() = 0;
  /// To the world, each time another one.
  virtual void routeAppears() = 0;
  /// The last of those.
  virtual void routeGoes() {}
  /// To a part of the world.
  virtual void otherRouteAppears() {}
  /// What the system tells comes in; then so much time passes, or nearly so, that a route has settled.
  virtual void settle() = 0;
  virtual void almostSettle() = 0;
};

/// Gives nothing where the test may not change a network.
using NetworkHostMaker = std::unique_ptr<NetworkHost> (*)();

template <class Host>
std::unique_ptr<NetworkHost> makeNetworkHost() {
  return std::make_unique<Host>();
}

class NetworkContract : public testing::TestWithParam<NetworkHostMaker> {
 protected:
  void SetUp() override {
    if (!host) GTEST_SKIP() << "may not make a network";
  }
  [[nodiscard]] Subscription count() {
    return host->network().observe([this] { ++told; });
  }

  const std::unique_ptr<NetworkHost> host = GetParam()();
  int told = 0;
};

TEST_P(NetworkContract, RouteThatAppearsIsToldOnceItHasSettled) {
  const auto observer = count();
  host->routeAppears();
  host->almostSettle();
  EXPECT_EQ(told, 0);
  host->settle();
  EXPECT_EQ(told, 1);
  host->settle();
  EXPECT_EQ(told, 1);
  host->routeAppears();
  host->settle();
  EXPECT_EQ(told, 2);
}

TEST_P(NetworkContract, RoutesThatAppearTogetherAreToldOnceAfterTheLast) {
  const auto observer = count();
  host->routeAppears();
  host->almostSettle();
  host->routeAppears();
  host->almostSettle();
  EXPECT_EQ(told, 0);
  host->settle();
  EXPECT_EQ(told, 1);
  host->settle();
  EXPECT_EQ(told, 1);
}

TEST_P(NetworkContract, RouteThatIsThereAlreadyIsNotTold) {
  host->routeAppears();
  const auto observer = count();
  host->settle();
  EXPECT_EQ(told, 0);
}

TEST_P(NetworkContract, EveryObserverIsToldUntilItIsDropped) {
  const auto first = count();
  auto second = count();
  host->routeAppears();
  host->settle();
  EXPECT_EQ(told, 2);
  host->routeAppears();
  host->almostSettle();
  second.reset();
  host->settle();
  EXPECT_EQ(told, 3);
}

TEST_P(NetworkContract, ObserverMayEndInWhatItIsTold) {
  Subscription observer;
  observer = host->network().observe([&] {
    observer.reset();
    ++told;
  });
  host->routeAppears();
  host->settle();
  host->routeAppears();
  host->settle();
  EXPECT_EQ(told, 1);
}

/// Only where there are routes of several kinds.
using RoutedNetworkContract = NetworkContract;

TEST_P(RoutedNetworkContract, RouteThatGoesAndOtherRoutesAreNotTold) {
  host->routeAppears();
  const auto observer = count();
  host->routeGoes();
  host->settle();
  host->otherRouteAppears();
  host->settle();
  EXPECT_EQ(told, 0);
  host->routeAppears();
  host->settle();
  EXPECT_EQ(told, 1);
}
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(RoutedNetworkContract);

}  // namespace nimbo
