// SPDX-License-Identifier: MIT
#include "platform/linux/display/sway_display.h"

#include <gtest/gtest.h>

#include <future>
#include <memory>
#include <optional>
#include <thread>

#include "platform/linux/display/desktop_display_power.h"
#include "platform/linux/loop/sd_event_main_loop.h"
#include "support/fake_main_loop.h"
#include "support/services/fake_sway.h"

namespace nimbo {
namespace {

using std::chrono::seconds;
using Idle = FakeSway::Idle;
using Orders = std::vector<std::string>;

/// The real loop for sockets; time passes by hand.
class SocketLoop final : public MainLoop {
 public:
  void post(std::function<void()> task) override { sockets_.post(std::move(task)); }
  [[nodiscard]] Subscription every(std::chrono::milliseconds interval, std::chrono::milliseconds leeway,
                                   std::function<void()> fire) override {
    return timers.every(interval, leeway, std::move(fire));
  }
  [[nodiscard]] Subscription at(std::chrono::system_clock::time_point when, std::chrono::milliseconds leeway,
                                std::function<void()> fire) override {
    return sockets_.at(when, leeway, std::move(fire));
  }
  [[nodiscard]] Subscription watch(int descriptor, std::function<void()> ready) override {
    return sockets_.watch(descriptor, std::move(ready));
  }
  void adopt(OuterLoop& outer) override { sockets_.adopt(outer); }
  void run() override { sockets_.run(); }
  void quit() override { sockets_.quit(); }

  [[nodiscard]] bool runUntil(const std::function<bool()>& done) const {
    const auto bound = std::chrono::steady_clock::now() + seconds(10);
    while (!done() && std::chrono::steady_clock::now() < bound) sd_event_run(sockets_.event(), 50000);
    return done();
  }

  /// Until nothing is on its way any more: all of it is in this process.
  void settle() const {
    while (sd_event_run(sockets_.event(), 0) > 0) {
    }
  }

  FakeMainLoop timers;

 private:
  SdEventMainLoop sockets_;
};

class SwayDisplayTest : public ::testing::Test {
 protected:
  void start(Idle idle = Idle::ext) {
    sway.emplace(loop, idle);
    display = std::make_unique<SwayDisplay>(loop, SwayDisplay::Sockets{sway->commandSocket(), sway->waylandSocket()});
  }

  void turnOff() {
    request = display->turnOff([this] { ++failures; });
    ASSERT_TRUE(loop.runUntil([this] { return sway->watching || failures > 0; }));
  }
  [[nodiscard]] bool displayBecomes(bool on) {
    return loop.runUntil([&] { return sway->displayOn == on; });
  }

  SocketLoop loop;
  std::optional<FakeSway> sway;
  std::unique_ptr<SwayDisplay> display;
  Subscription request;
  int failures = 0;
};

TEST_F(SwayDisplayTest, GoesOffWhenTheHandRestsAndOnWithTheNextInput) {
  start();
  turnOff();
  EXPECT_EQ(sway->watchedPause, 700U);
  loop.settle();
  EXPECT_TRUE(sway->displayOn) << "the key is still held";
  sway->pause();
  ASSERT_TRUE(displayBecomes(false));
  sway->moveMouse();
  ASSERT_TRUE(displayBecomes(true));
  loop.settle();
  EXPECT_EQ(sway->ordered, (Orders{"output * power off", "output * power on"}));
  EXPECT_FALSE(sway->watching) << "nothing is left to wait for";
  EXPECT_TRUE(loop.timers.repeatingTimers().empty());
  EXPECT_EQ(failures, 0);
}

TEST_F(SwayDisplayTest, OldSwayIsToldInItsOwnWords) {
  start(Idle::kwin);
  sway->knowsPower = false;
  turnOff();
  EXPECT_EQ(sway->watchedPause, 700U);
  sway->pause();
  ASSERT_TRUE(displayBecomes(false));
  sway->moveMouse();
  ASSERT_TRUE(displayBecomes(true));
  EXPECT_EQ(sway->ordered, (Orders{"output * power off", "output * dpms off", "output * dpms on"}));
  EXPECT_EQ(failures, 0);
}

TEST_F(SwayDisplayTest, NewSwayIsAskedForInputEvenWhileAFilmRuns) {
  start(Idle::extVersion2);
  turnOff();
  EXPECT_TRUE(sway->deafToInhibitors);
  EXPECT_EQ(sway->watchedPause, 700U);
  sway->pause();
  EXPECT_TRUE(displayBecomes(false));
}

TEST_F(SwayDisplayTest, InputDuringTheCommandStillTurnsItOn) {
  start();
  turnOff();
  sway->pause();
  ASSERT_TRUE(loop.runUntil([this] { return !sway->ordered.empty(); }));
  sway->moveMouse();
  loop.settle();
  EXPECT_TRUE(sway->displayOn);
}

TEST_F(SwayDisplayTest, WorksASecondTime) {
  start();
  for (int turn = 0; turn < 2; ++turn) {
    turnOff();
    sway->pause();
    ASSERT_TRUE(displayBecomes(false));
    sway->moveMouse();
    ASSERT_TRUE(displayBecomes(true));
    loop.settle();
  }
  EXPECT_EQ(failures, 0);
}

TEST_F(SwayDisplayTest, RequestDroppedInTimeIsNotCarriedOut) {
  start();
  turnOff();
  request.reset();
  sway->pause();
  loop.settle();
  EXPECT_TRUE(sway->displayOn);
  EXPECT_FALSE(sway->watching);
  loop.timers.advance(seconds(60));
  EXPECT_EQ(failures, 0);
}

TEST_F(SwayDisplayTest, RequestDroppedLaterStillLetsInputTurnItOn) {
  start();
  turnOff();
  sway->pause();
  ASSERT_TRUE(displayBecomes(false));
  loop.settle();
  request.reset();
  sway->moveMouse();
  EXPECT_TRUE(displayBecomes(true));
}

TEST_F(SwayDisplayTest, RefusalIsToldOnce) {
  start();
  sway->obeys = false;
  turnOff();
  sway->pause();
  ASSERT_TRUE(loop.runUntil([this] { return failures > 0; }));
  loop.settle();
  EXPECT_EQ(failures, 1);
  EXPECT_EQ(sway->ordered, (Orders{"output * power off", "output * dpms off"}));
  EXPECT_FALSE(sway->watching);
}

TEST_F(SwayDisplayTest, CompositorThatCannotTellOfInputIsAFailureAndStaysOn) {
  start(Idle::none);
  turnOff();
  EXPECT_EQ(failures, 1);
  EXPECT_EQ(sway->ordered, Orders{});
}

TEST_F(SwayDisplayTest, CompositorThatIsNotThereIsAFailureLater) {
  display = std::make_unique<SwayDisplay>(loop, SwayDisplay::Sockets{"/nonexistent/sway", "/nonexistent/wayland"});
  request = display->turnOff([this] { ++failures; });
  EXPECT_EQ(failures, 0);
  EXPECT_TRUE(loop.runUntil([this] { return failures == 1; }));
}

TEST_F(SwayDisplayTest, HandThatNeverRestsIsAFailure) {
  start();
  turnOff();
  loop.timers.advance(seconds(6));
  EXPECT_EQ(failures, 1);
  sway->pause();
  loop.settle();
  EXPECT_TRUE(sway->displayOn);
}

TEST_F(SwayDisplayTest, LosingTheCompositorTurnsADarkDisplayOn) {
  start();
  turnOff();
  sway->pause();
  ASSERT_TRUE(displayBecomes(false));
  loop.settle();
  sway->hangUp();
  EXPECT_TRUE(displayBecomes(true));
  EXPECT_EQ(failures, 1);
}

/// sway as a program of its own, which goes on while the test waits.
class SwayOnAThread {
 public:
  SwayOnAThread() : thread_([this] { loop_.run(); }) {}
  ~SwayOnAThread() {
    loop_.post([this] { loop_.quit(); });
    thread_.join();
  }
  SwayOnAThread(const SwayOnAThread&) = delete;
  SwayOnAThread& operator=(const SwayOnAThread&) = delete;

  [[nodiscard]] bool tell(const std::function<bool(FakeSway&)>& question) {
    std::promise<bool> answer;
    loop_.post([&] { answer.set_value(question(sway)); });
    return answer.get_future().get();
  }

 private:
  SdEventMainLoop loop_;

 public:
  FakeSway sway{loop_};

 private:
  std::thread thread_;
};

TEST(SwayDisplay, DestroyingItTurnsADarkDisplayOn) {
  SwayOnAThread desktop;
  SocketLoop loop;
  SwayDisplay::Sockets sockets{desktop.sway.commandSocket(), desktop.sway.waylandSocket()};
  auto display = std::make_unique<SwayDisplay>(loop, std::move(sockets));
  const auto request = display->turnOff([] {});
  const auto becomes = [&](const std::function<bool(FakeSway&)>& state) {
    return loop.runUntil([&] { return desktop.tell(state); });
  };
  ASSERT_TRUE(becomes([](FakeSway& sway) { return sway.watching; }));
  ASSERT_TRUE(desktop.tell([](FakeSway& sway) { return sway.pause(), true; }));
  ASSERT_TRUE(becomes([](FakeSway& sway) { return !sway.displayOn; }));
  display.reset();
  EXPECT_TRUE(desktop.tell([](FakeSway& sway) { return sway.displayOn; }));
}

TEST(SwayDisplay, DestroyingItDoesNotWaitForASwayThatHangs) {
  SocketLoop loop;
  FakeSway hanging(loop);  // nobody turns its loop meanwhile
  const auto begin = std::chrono::steady_clock::now();
  runLastSwayCommand(hanging.commandSocket(), "output * power on", std::chrono::milliseconds(50));
  runLastSwayCommand("/nonexistent/sway", "output * power on", std::chrono::milliseconds(50));
  EXPECT_LT(std::chrono::steady_clock::now() - begin, seconds(1));
}

TEST_F(SwayDisplayTest, DesktopDisplayPowerUsesItUnderSway) {
  start();
  DesktopDisplayPower power(loop, nullptr, X11ScreenMaker(), {"sway", {sway->commandSocket(), sway->waylandSocket()}});
  auto made = power.sleepNow([this] { ++failures; });
  ASSERT_TRUE(made);
  ASSERT_TRUE(loop.runUntil([this] { return sway->watching; }));
  sway->pause();
  EXPECT_TRUE(displayBecomes(false));
  sway->moveMouse();
  EXPECT_TRUE(displayBecomes(true));
}

}  // namespace
}  // namespace nimbo
