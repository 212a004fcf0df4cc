// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "darwin/fakes/fake_dynamic_store.h"
#include "darwin/fakes/fake_run_loop.h"
#include "platform/darwin/loop/cf_main_loop.h"
#include "platform/darwin/machine/sc_network.h"

namespace nimbo {
namespace {

using namespace std::chrono_literals;

constexpr const char* kRoute = "State:/Network/Global/IPv4";
constexpr const char* kNewerRoute = "State:/Network/Global/IPv6";

class ScNetworkTest : public testing::Test {
 protected:
  void TearDown() override {
    subscription.reset();
    EXPECT_TRUE(store.connections.empty());
  }
  void observe() {
    subscription = network.observe([this] {
      ++told;
      loop.quit();
    });
  }
  void runFor(std::chrono::milliseconds longest) {
    const auto limit = loop.every(longest, 0ms, [this] { loop.quit(); });
    loop.run();
  }

  fake::DynamicStore store;
  CfMainLoop loop;
  ScNetwork network{loop, 30ms};
  Subscription subscription;
  int told = 0;
};

TEST_F(ScNetworkTest, RouteThatAppearsIsToldOnceItHasSettled) {
  observe();
  const auto begun = std::chrono::steady_clock::now();
  store.set(kRoute, true);
  store.set(kNewerRoute, true);
  runFor(5s);
  EXPECT_EQ(told, 1);
  EXPECT_GE(std::chrono::steady_clock::now() - begun, 30ms);
  runFor(100ms);
  EXPECT_EQ(told, 1);
}

TEST_F(ScNetworkTest, RouteThatIsThereAlreadyOrGoesIsNotTold) {
  store.set(kRoute, true);
  observe();
  runFor(100ms);
  store.set(kRoute, false);
  runFor(100ms);
  EXPECT_EQ(told, 0);
  store.set(kRoute, true);
  runFor(5s);
  EXPECT_EQ(told, 1);
}

TEST_F(ScNetworkTest, ObserverMayEndInWhatItIsTold) {
  subscription = network.observe([this] {
    ++told;
    subscription.reset();
    loop.quit();
  });
  store.set(kRoute, true);
  runFor(5s);
  EXPECT_EQ(told, 1);
  EXPECT_TRUE(store.connections.empty());
}

TEST_F(ScNetworkTest, DroppedObserverIsNotTold) {
  observe();
  store.set(kRoute, true);
  subscription.reset();
  runFor(100ms);
  EXPECT_EQ(told, 0);
}

// Nothing is told then, and nothing is left.
TEST_F(ScNetworkTest, StoreMayRefuseAnyStep) {
  for (bool* const works : {&store.connects, &store.watches, &store.notifies}) {
    *works = false;
    observe();
    store.set(kRoute, true);
    runFor(50ms);
    EXPECT_EQ(told, 0);
    subscription.reset();
    *works = true;
  }
}

}  // namespace
}  // namespace nimbo
