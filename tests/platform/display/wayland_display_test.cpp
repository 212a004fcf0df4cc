// SPDX-License-Identifier: MIT
#include "platform/linux/display/wayland/wayland_display.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>

#include "platform/linux/display/display_modules.h"
#include "platform/linux/loop/sd_event_main_loop.h"
#include "platform/posix/loop/dl_module_loader.h"
#include "support/fake_main_loop.h"
#include "support/services/fake_compositor.h"
#include "support/services/private_sway.h"

namespace nimbo {
namespace {

using std::chrono::seconds;
using std::chrono::steady_clock;
using Idle = FakeCompositor::Idle;
using Power = FakeCompositor::Power;

bool runUntil(const SdEventMainLoop& loop, const std::function<bool()>& done) {
  const auto bound = steady_clock::now() + seconds(10);
  while (!done() && steady_clock::now() < bound) sd_event_run(loop.event(), 50000);
  return done();
}

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
  [[nodiscard]] std::uint64_t turn() const override { return sockets_.turn(); }
  void run() override { sockets_.run(); }
  void quit() override { sockets_.quit(); }

  [[nodiscard]] bool runUntil(const std::function<bool()>& done) const { return nimbo::runUntil(sockets_, done); }

  /// Until nothing is on its way any more: all of it is in this process.
  void settle() const {
    while (sd_event_run(sockets_.event(), 0) > 0) {
    }
  }

  FakeMainLoop timers;

 private:
  SdEventMainLoop sockets_;
};

class WaylandDisplayTest : public ::testing::Test {
 protected:
  void start(Idle idle = Idle::ext, Power power = Power::works, int outputs = 1) {
    compositor.emplace(loop, idle, power, outputs);
    display.emplace(loop, compositor->socket());
  }

  void sleepNow() {
    const int before = failures;
    compositor->watchedPause = 0;
    auto made = display->sleepNow([this] { ++failures; });
    ASSERT_TRUE(made);
    request = std::move(*made);
    ASSERT_TRUE(loop.runUntil([&] { return compositor->watchedPause > 0 || failures > before; }));
  }
  /// How many outputs are on.
  [[nodiscard]] bool litBecomes(int count) {
    return loop.runUntil([&] { return compositor->lit() == count; });
  }

  SocketLoop loop;
  std::optional<FakeCompositor> compositor;
  std::optional<WaylandDisplay> display;
  Subscription request;
  int failures = 0;
};

TEST_F(WaylandDisplayTest, GoesOffInAPauseAndOnWithTheNextInput) {
  start();
  sleepNow();
  EXPECT_EQ(compositor->watchedPause, 700U);
  loop.settle();
  EXPECT_EQ(compositor->requests, 0) << "the key is still held";
  compositor->pause();
  ASSERT_TRUE(litBecomes(0));
  compositor->moveMouse();
  ASSERT_TRUE(litBecomes(1));
  loop.settle();
  EXPECT_EQ(compositor->requests, 2);
  EXPECT_FALSE(compositor->hasClient()) << "nothing is left to wait for";
  EXPECT_TRUE(loop.timers.repeatingTimers().empty());
  EXPECT_EQ(failures, 0);
}

TEST_F(WaylandDisplayTest, ScreenThatUnplugsItselfInTheDarkIsTurnedOnWhenItIsBack) {
  start();
  sleepNow();
  compositor->pause();
  ASSERT_TRUE(litBecomes(0));
  compositor->unplug();
  loop.settle();
  compositor->darkAtPlugIn = true;
  compositor->plugIn();
  loop.settle();
  EXPECT_EQ(compositor->lit(), 0);
  compositor->moveMouse();
  EXPECT_TRUE(litBecomes(1));
  EXPECT_EQ(failures, 0);
}

TEST_F(WaylandDisplayTest, OldCompositorIsAskedForInputByTheForerunner) {
  start(Idle::kwin);
  sleepNow();
  EXPECT_EQ(compositor->watchedPause, 700U);
  compositor->pause();
  ASSERT_TRUE(litBecomes(0));
  compositor->moveMouse();
  ASSERT_TRUE(litBecomes(1));
  EXPECT_EQ(failures, 0);
}

TEST_F(WaylandDisplayTest, NewCompositorIsAskedForInputEvenWhileAFilmRuns) {
  start(Idle::extVersion2);
  sleepNow();
  EXPECT_TRUE(compositor->deafToInhibitors);
  EXPECT_EQ(compositor->watchedPause, 700U);
  compositor->pause();
  EXPECT_TRUE(litBecomes(0));
}

TEST_F(WaylandDisplayTest, InputWhileItGoesOffStillTurnsItOn) {
  start();
  sleepNow();
  compositor->pause();
  ASSERT_TRUE(litBecomes(0));
  compositor->moveMouse();
  loop.settle();
  EXPECT_EQ(compositor->lit(), 1);
}

TEST_F(WaylandDisplayTest, WorksASecondTimeAlsoAtOnce) {
  start();
  for (const bool settled : {true, false, true}) {
    sleepNow();
    compositor->pause();
    ASSERT_TRUE(litBecomes(0));
    compositor->moveMouse();
    ASSERT_TRUE(litBecomes(1));
    if (settled) loop.settle();
  }
  EXPECT_EQ(failures, 0);
}

TEST_F(WaylandDisplayTest, RequestDroppedInTimeIsNotCarriedOut) {
  start();
  sleepNow();
  request.reset();
  compositor->pause();
  loop.settle();
  EXPECT_EQ(compositor->requests, 0);
  EXPECT_FALSE(compositor->hasClient());
  loop.timers.advance(seconds(60));
  EXPECT_EQ(failures, 0);
}

TEST_F(WaylandDisplayTest, RequestDroppedLaterStillLetsInputTurnItOn) {
  start();
  sleepNow();
  compositor->pause();
  ASSERT_TRUE(litBecomes(0));
  loop.settle();
  request.reset();
  compositor->moveMouse();
  EXPECT_TRUE(litBecomes(1));
}

TEST_F(WaylandDisplayTest, CompositorThatCannotDoItIsAFailureAndStaysOn) {
  start(Idle::none);
  sleepNow();
  EXPECT_EQ(failures, 1);
  start(Idle::ext, Power::none);
  sleepNow();
  EXPECT_EQ(failures, 2);
  loop.settle();
  EXPECT_FALSE(compositor->hasClient());
}

TEST_F(WaylandDisplayTest, CompositorThatIsNotThereIsAFailureLater) {
  display.emplace(loop, "/nonexistent/wayland");
  const auto made = display->sleepNow([this] { ++failures; });
  EXPECT_EQ(failures, 0);
  EXPECT_TRUE(loop.runUntil([this] { return failures == 1; }));
}

TEST_F(WaylandDisplayTest, InputWithoutAPauseIsAFailure) {
  start();
  sleepNow();
  loop.timers.advance(seconds(6));
  EXPECT_EQ(failures, 1);
  compositor->pause();
  loop.settle();
  EXPECT_EQ(compositor->requests, 0);
}

TEST_F(WaylandDisplayTest, CompositorThatNeverAnswersIsAFailure) {
  FakeMainLoop idle;
  const FakeCompositor mute(idle);  // whose loop nobody turns
  display.emplace(loop, mute.socket());
  const auto made = display->sleepNow([this] { ++failures; });
  loop.settle();
  EXPECT_EQ(failures, 0);
  loop.timers.advance(seconds(6));
  EXPECT_EQ(failures, 1);
}

TEST_F(WaylandDisplayTest, GarbageIsAFailure) {
  start();
  sleepNow();
  compositor->sendGarbage();
  EXPECT_TRUE(loop.runUntil([this] { return failures == 1; }));
  loop.settle();
  EXPECT_FALSE(compositor->hasClient());
}

TEST_F(WaylandDisplayTest, FailureMayDestroyIt) {
  start();
  const auto made = display->sleepNow([this] { display.reset(); });
  ASSERT_TRUE(loop.runUntil([this] { return compositor->watching(); }));
  compositor->hangUp();
  EXPECT_TRUE(loop.runUntil([this] { return !display; }));
}

TEST_F(WaylandDisplayTest, LosingTheConnectionTurnsADarkDisplayOn) {
  start();
  sleepNow();
  compositor->pause();
  ASSERT_TRUE(litBecomes(0));
  loop.settle();
  compositor->hangUp();
  EXPECT_TRUE(litBecomes(1));
  EXPECT_EQ(failures, 1);
  loop.settle();
  EXPECT_FALSE(compositor->hasClient());
}

TEST_F(WaylandDisplayTest, DestroyingItDoesNotWaitForACompositorThatHangs) {
  start();
  sleepNow();
  compositor->pause();
  ASSERT_TRUE(litBecomes(0));
  const auto begin = steady_clock::now();
  display.reset();
  EXPECT_LT(steady_clock::now() - begin, seconds(1));
}

/// All of it against the real compositor, by the module, in real time.
class SwayTest : public ::testing::Test {
 protected:
  void sleepNow() {
    auto made = display->sleepNow([this] { ++failures; });
    ASSERT_TRUE(made);
    request = std::move(*made);
  }
  [[nodiscard]] bool turnedOffBecomes(int count) {
    return runUntil(loop, [&] { return sway.turnedOff() == count; });
  }
  [[nodiscard]] bool turnedOnBecomes(int count) {
    return runUntil(loop, [&] { return sway.turnedOn() == count; });
  }

  PrivateSway sway;
  SdEventMainLoop loop;
  DlModuleLoader loader{NIMBO_MODULE_FOLDER};
  std::unique_ptr<DisplayPower> display = waylandDisplayFromModule(loader, loop, sway.socket())();
  Subscription request;
  int failures = 0;
};

TEST_F(SwayTest, GoesOffInAPauseAndOnWithAKeyTwice) {
  for (int turn = 1; turn <= 2; ++turn) {
    sleepNow();
    const auto begin = steady_clock::now();
    ASSERT_TRUE(turnedOffBecomes(turn));
    EXPECT_GE(steady_clock::now() - begin, std::chrono::milliseconds(600));
    EXPECT_EQ(sway.turnedOn(), turn - 1);
    sway.pressKey();
    ASSERT_TRUE(turnedOnBecomes(turn));
  }
  EXPECT_EQ(failures, 0);
}

TEST_F(SwayTest, DestroyingItTurnsADarkDisplayOn) {
  sleepNow();
  ASSERT_TRUE(turnedOffBecomes(1));
  display.reset();
  EXPECT_EQ(sway.turnedOn(), 1);
}

TEST(WaylandDisplayModule, GivesNothingOutsideWaylandSessionsOrWhenItIsNotInstalled) {
  SdEventMainLoop loop;
  DlModuleLoader loader(NIMBO_MODULE_FOLDER);
  EXPECT_EQ(waylandDisplayFromModule(loader, loop, "")(), nullptr);
  DlModuleLoader nowhere("/nonexistent");
  EXPECT_EQ(waylandDisplayFromModule(nowhere, loop, "/run/wayland-0")(), nullptr);
}

}  // namespace
}  // namespace nimbo
