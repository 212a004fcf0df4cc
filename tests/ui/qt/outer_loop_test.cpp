// SPDX-License-Identifier: MIT
#include "ui/qt/qt_user_interface.h"

#include <poll.h>
#include <unistd.h>

#include <QTimer>
#include <thread>

#include "platform/linux/loop/sd_event_main_loop.h"
#include "qt_test.h"

namespace nimbo {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

/// The real main loop under the toolkit's, with the dashboard open.
class QtOuterLoopTest : public DashboardTest {
 protected:
  void SetUp() override {
    DashboardTest::SetUp();
    loop_.adopt(interface().loop());
    open();
    // Bounds every test: a callback that never comes must not hang.
    limit_ = loop_.at(std::chrono::system_clock::now() + std::chrono::seconds(20), milliseconds(0), [this] {
      timedOut_ = true;
      loop_.quit();
    });
  }
  void TearDown() override { EXPECT_FALSE(timedOut_); }

  milliseconds run() {
    const auto start = steady_clock::now();
    loop_.run();
    return std::chrono::duration_cast<milliseconds>(steady_clock::now() - start);
  }

  SdEventMainLoop loop_;
  Subscription limit_;
  bool timedOut_ = false;
};

TEST_F(QtOuterLoopTest, RepeatingTimerStaysOnTimeWhileAWindowIsOpen) {
  int fired = 0;
  const auto timer = loop_.every(milliseconds(20), milliseconds(0), [&] {
    if (++fired == 25) loop_.quit();
  });
  const auto time = run();
  EXPECT_EQ(fired, 25);
  EXPECT_GE(time, milliseconds(490));
  EXPECT_LT(time, milliseconds(900));
}

TEST_F(QtOuterLoopTest, WindowIsPaintedWhileTimersFire) {
  auto content = controller_.content();
  const auto timer = loop_.every(milliseconds(10), milliseconds(0), [&] {
    content.resources.hero.text += "1";
    window_->render(content);
  });
  QTimer::singleShot(milliseconds(100), &widget(), [this] { loop_.quit(); });
  run();
  EXPECT_GT(content.resources.hero.text.size(), 5U);
}

TEST_F(QtOuterLoopTest, PostFromAnotherThreadArrivesOnTheMainThread) {
  std::thread::id thread;
  std::jthread worker([&] {
    loop_.post([&] {
      thread = std::this_thread::get_id();
      loop_.quit();
    });
  });
  run();
  EXPECT_EQ(thread, std::this_thread::get_id());
}

TEST_F(QtOuterLoopTest, WallClockTimerFires) {
  bool fired = false;
  const auto timer = loop_.at(std::chrono::system_clock::now() + milliseconds(50), milliseconds(0), [&] {
    fired = true;
    loop_.quit();
  });
  EXPECT_GE(run(), milliseconds(45));
  EXPECT_TRUE(fired);
}

// The inner loop's descriptor turns readable only for timers that it was asked about since.
TEST_F(QtOuterLoopTest, TimerArmedByTheToolkitsHandlerFires) {
  Subscription timer;
  milliseconds waited{};
  QTimer::singleShot(milliseconds(10), &widget(), [&] {
    const auto armed = steady_clock::now();
    timer = loop_.every(milliseconds(30), milliseconds(0), [&, armed] {
      waited = std::chrono::duration_cast<milliseconds>(steady_clock::now() - armed);
      loop_.quit();
    });
  });
  run();
  EXPECT_GE(waited, milliseconds(29));
  EXPECT_LT(waited, milliseconds(1000));
}

TEST_F(QtOuterLoopTest, PostFromTheToolkitsHandlerRuns) {
  QTimer::singleShot(milliseconds(10), &widget(), [this] { loop_.post([this] { loop_.quit(); }); });
  EXPECT_LT(run(), milliseconds(1000));
}

TEST_F(QtOuterLoopTest, QuitEndsTheLoopThoughTheWindowRefusesToClose) {
  window_->setEvents(
      {.escapePressed = {}, .clickedOutside = {}, .otherApplicationActivated = {}, .closeRequested = [] {}});
  loop_.post([this] { loop_.quit(); });
  EXPECT_LT(run(), milliseconds(1000));
  EXPECT_TRUE(window_->visible());
}

TEST_F(QtOuterLoopTest, HidingTheLastWindowDoesNotEndTheLoop) {
  bool later = false;
  loop_.post([this] { window_->hide(); });
  const auto timer = loop_.every(milliseconds(60), milliseconds(0), [&] {
    later = true;
    loop_.quit();
  });
  run();
  EXPECT_TRUE(later);
}

TEST_F(QtOuterLoopTest, IdleLoopSleeps) {
  int turns = 0;
  const auto dispatch = [&] { ++turns; };
  std::array<int, 2> pipe{};
  ASSERT_EQ(::pipe(pipe.data()), 0);
  window_->hide();
  QTimer::singleShot(milliseconds(300), [&] { interface().loop().stop(); });
  interface().loop().run(pipe[0], dispatch);
  EXPECT_LT(turns, 20);
  ::close(pipe[0]);
  ::close(pipe[1]);
}

TEST_F(QtOuterLoopTest, ReadableDescriptorIsDispatched) {
  std::array<int, 2> pipe{};
  ASSERT_EQ(::pipe(pipe.data()), 0);
  std::jthread writer([&] { EXPECT_EQ(::write(pipe[1], "x", 1), 1); });
  int received = 0;
  QTimer::singleShot(milliseconds(5000), &widget(), [&] { interface().loop().stop(); });
  interface().loop().run(pipe[0], [&] {
    pollfd poll{pipe[0], POLLIN, 0};
    char character = 0;
    if (::poll(&poll, 1, 0) != 1 || ::read(pipe[0], &character, 1) != 1) return;
    ++received;
    interface().loop().stop();
  });
  EXPECT_EQ(received, 1);
  ::close(pipe[0]);
  ::close(pipe[1]);
}

}  // namespace
}  // namespace nimbo
