// SPDX-License-Identifier: MIT
#include "darwin/fakes/fake_run_loop.h"
#include "platform/contracts/main_loop_contract.h"
#include "platform/contracts/termination_contract.h"
#include "platform/darwin/loop/cf_main_loop.h"
#include "platform/darwin/loop/dispatch_termination.h"

namespace nimbo {
namespace {

using namespace std::chrono_literals;

struct CfHost final : MainLoopHost {
  [[nodiscard]] MainLoop& loop() override { return events; }

  CfMainLoop events;
};

const auto kHost = testing::Values(makeMainLoopHost<CfHost>);
INSTANTIATE_TEST_SUITE_P(Cf, MainLoopContract, kHost);
INSTANTIATE_TEST_SUITE_P(Cf, RealTimeMainLoopContract, kHost);

struct DispatchHost final : TerminationHost {
  [[nodiscard]] MainLoop& loop() override { return events; }
  [[nodiscard]] Termination& termination() override { return signals; }

  CfMainLoop events;
  DispatchTermination signals;
};
INSTANTIATE_TEST_SUITE_P(Dispatch, TerminationContract, everySignalTo(makeTerminationHost<DispatchHost>));

TEST(DispatchTermination, SignalThatWasIgnoredIsForProgramsThatAreStarted) {
  const auto handlerOf = [](int signal) {
    struct sigaction action {};
    ::sigaction(signal, nullptr, &action);
    return action.sa_handler;
  };
  ::signal(SIGHUP, SIG_IGN);
  ::signal(SIGTERM, SIG_DFL);
  const DispatchTermination termination;
  EXPECT_EQ(handlerOf(SIGHUP), SIG_IGN);
  EXPECT_NE(handlerOf(SIGTERM), SIG_IGN);  // a handler is gone in another program
  ::signal(SIGHUP, SIG_DFL);
}

TEST(CfMainLoop, LeewayIsTheTimersTolerance) {
  CfHost host;
  const auto repeating = host.events.every(5s, 1s, [] {});
  EXPECT_EQ(fake::lastTimer().interval, 5s);
  EXPECT_EQ(fake::lastTimer().tolerance, 1s);
  const auto once = host.events.at(host.wallClock() + 5s, 250ms, [] {});
  EXPECT_EQ(fake::lastLeeway(), 250ms);
}

TEST(CfMainLoop, SleepCountsForTheWallClockAlone) {
  CfHost host;
  const auto repeating = host.events.every(1h, 1s, [] { ADD_FAILURE(); });
  int fired = 0;
  const auto once = host.events.at(host.wallClock() + 2h, 1s, [&] { ++fired; });
  fake::moveWallClock(1h);
  host.runFor(20ms);
  EXPECT_EQ(fired, 0);
  fake::moveWallClock(1h);
  EXPECT_TRUE(host.runUntil([&] { return fired == 1; }));
  fake::moveWallClock(-2h);
}

TEST(CfMainLoop, WhoRunsTheLoopIsAskedToRunAndToStopIt) {
  std::vector<std::string> asked;
  CfMainLoop loop({[&] {
                     asked.emplace_back("run");
                     CFRunLoopRun();
                   },
                   [&] {
                     asked.emplace_back("stop");
                     CFRunLoopStop(CFRunLoopGetMain());
                   }});
  loop.post([&] { loop.quit(); });
  loop.run();
  EXPECT_EQ(asked, (std::vector<std::string>{"run", "stop"}));
}

TEST(CfMainLoop, StopOfSomebodyElseDoesNotEndIt) {
  CfHost host;
  host.events.post([] { CFRunLoopStop(CFRunLoopGetMain()); });
  int ran = 0;
  const auto timer = host.events.every(5ms, 1ms, [&] { ++ran; });
  EXPECT_TRUE(host.runUntil([&] { return ran == 2; }));
}

}  // namespace
}  // namespace nimbo
