// SPDX-License-Identifier: MIT
#include "platform/linux/loop/signal_termination.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <chrono>
#include <optional>

namespace nimbo {
namespace {

using std::chrono::milliseconds;

class SignalTerminationTest : public ::testing::TestWithParam<int> {
 protected:
  SdEventMainLoop loop;
  SignalTermination termination{loop};
};

TEST_P(SignalTerminationTest, SignalIsReportedOnTheLoop) {
  std::optional<Termination::Cause> requested;
  const auto observation = termination.observe([&](Termination::Cause cause) {
    requested = cause;
    loop.quit();
  });
  const auto limit = loop.every(milliseconds(5000), milliseconds(1), [&] { loop.quit(); });
  loop.post([] { kill(getpid(), GetParam()); });
  loop.run();
  EXPECT_EQ(requested, GetParam() == SIGINT ? Termination::Cause::interrupt : Termination::Cause::request);
}

TEST_P(SignalTerminationTest, SignalWithoutObserverDoesNotEndTheProcess) {
  int requested = 0;
  {
    const auto observation = termination.observe([&](Termination::Cause) { ++requested; });
  }
  const auto limit = loop.every(milliseconds(30), milliseconds(1), [&] { loop.quit(); });
  loop.post([] { kill(getpid(), GetParam()); });
  loop.run();
  EXPECT_EQ(requested, 0);
}

INSTANTIATE_TEST_SUITE_P(Signals, SignalTerminationTest, ::testing::Values(SIGTERM, SIGINT, SIGHUP));

}  // namespace
}  // namespace nimbo
