// SPDX-License-Identifier: MIT
#include "darwin/fakes/fake_dynamic_store.h"
#include "platform/contracts/network_contract.h"
#include "platform/darwin/loop/cf_main_loop.h"
#include "platform/darwin/machine/sc_network.h"
#include "support/fake_main_loop.h"

namespace nimbo {
namespace {

using namespace std::chrono_literals;

struct ScNetworkHost final : NetworkHost {
  ScNetworkHost() = default;
  ~ScNetworkHost() override { EXPECT_TRUE(store.connections.empty()); }
  ScNetworkHost(const ScNetworkHost&) = delete;
  ScNetworkHost& operator=(const ScNetworkHost&) = delete;

  [[nodiscard]] Network& network() override { return dynamicStore; }
  void routeAppears() override { setRoute(routes++, true); }
  void routeGoes() override { setRoute(--routes, false); }
  void otherRouteAppears() override { store.set("State:/Network/Interface/en0/IPv4", true); }
  void settle() override {
    pass(2s);
    EXPECT_TRUE(timers.repeatingTimers().empty());
  }
  void almostSettle() override { pass(1999ms); }

  void setRoute(int number, bool isThere) {
    store.set(number % 2 == 0 ? "State:/Network/Global/IPv4" : "State:/Network/Global/IPv6", isThere);
  }
  void pass(std::chrono::milliseconds time) {
    for (int turn = 0; turn < 3; ++turn) {
      loop.post([this] { loop.quit(); });
      loop.run();
    }
    timers.advance(time);
  }

  fake::DynamicStore store;
  CfMainLoop loop;
  FakeMainLoop timers;
  ScNetwork dynamicStore{timers};
  int routes = 0;
};
const auto kScNetwork = testing::Values(makeNetworkHost<ScNetworkHost>);
INSTANTIATE_TEST_SUITE_P(Sc, NetworkContract, kScNetwork);
INSTANTIATE_TEST_SUITE_P(Sc, RoutedNetworkContract, kScNetwork);

// Nothing is told then, and nothing is left.
TEST(ScNetwork, StoreMayRefuseAnyStep) {
  ScNetworkHost host;
  for (bool* const works : {&host.store.connects, &host.store.watches, &host.store.notifies}) {
    *works = false;
    const auto observer = host.dynamicStore.observe([] { ADD_FAILURE(); });
    host.routeAppears();
    host.settle();
    *works = true;
  }
}

}  // namespace
}  // namespace nimbo
