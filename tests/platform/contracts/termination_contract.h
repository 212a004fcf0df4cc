// SPDX-License-Identifier: MIT
// What every way to hear of the process's end promises (platform/system_events.h).
#pragma once

#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <chrono>
#include <memory>
#include <optional>
#include <tuple>

#include "platform/main_loop.h"
#include "platform/system_events.h"

namespace nimbo {

struct TerminationHost {
  virtual ~TerminationHost() = default;
  [[nodiscard]] virtual MainLoop& loop() = 0;
  [[nodiscard]] virtual Termination& termination() = 0;
  virtual void send(int signal) { ::kill(::getpid(), signal); }
};

using TerminationHostMaker = std::unique_ptr<TerminationHost> (*)();

template <class Host>
std::unique_ptr<TerminationHost> makeTerminationHost() {
  return std::make_unique<Host>();
}

class TerminationContract : public testing::TestWithParam<std::tuple<TerminationHostMaker, int>> {
 protected:
  const int signal = std::get<1>(GetParam());
  const std::unique_ptr<TerminationHost> host = std::get<0>(GetParam())();
  MainLoop& loop = host->loop();

  void sendAndRunFor(std::chrono::milliseconds longest) {
    const auto limit = loop.every(longest, std::chrono::milliseconds(1), [this] { loop.quit(); });
    loop.post([this] { host->send(signal); });
    loop.run();
  }
};

TEST_P(TerminationContract, SignalIsReportedOnTheLoop) {
  std::optional<Termination::Cause> requested;
  const auto observation = host->termination().observe([&](Termination::Cause cause) {
    requested = cause;
    loop.quit();
  });
  sendAndRunFor(std::chrono::seconds(5));
  EXPECT_EQ(requested, signal == SIGINT ? Termination::Cause::interrupt : Termination::Cause::request);
}

TEST_P(TerminationContract, SignalWithoutObserverDoesNotEndTheProcess) {
  int requested = 0;
  {
    const auto observation = host->termination().observe([&](Termination::Cause) { ++requested; });
  }
  sendAndRunFor(std::chrono::milliseconds(30));
  EXPECT_EQ(requested, 0);
}

TEST_P(TerminationContract, ObserverMayEndInWhatItIsTold) {
  Subscription observation;
  int requested = 0;
  observation = host->termination().observe([&](Termination::Cause) {
    observation.reset();
    ++requested;
    loop.quit();
  });
  sendAndRunFor(std::chrono::seconds(5));
  EXPECT_EQ(requested, 1);
}

inline auto everySignalTo(TerminationHostMaker maker) {
  return testing::Combine(testing::Values(maker), testing::Values(SIGTERM, SIGINT, SIGHUP));
}

}  // namespace nimbo
