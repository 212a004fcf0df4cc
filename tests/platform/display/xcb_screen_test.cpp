// SPDX-License-Identifier: MIT
#include "platform/linux/display/x11/xcb_screen.h"

#include <gtest/gtest.h>
#include <xcb/screensaver.h>

#include <chrono>
#include <cstdlib>
#include <memory>

#include "platform/linux/display/display_modules.h"
#include "platform/posix/loop/dl_module_loader.h"
#include "support/services/fake_x11_server.h"
#include "support/services/private_display.h"

namespace nimbo {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;
using Manner = FakeX11Server::Manner;

/// Somebody on the display who would act after a time without input.
class IdleWatcher {
 public:
  explicit IdleWatcher(const std::string& display) : connection_(xcb_connect(display.c_str(), nullptr)) {}
  ~IdleWatcher() { xcb_disconnect(connection_); }
  IdleWatcher(const IdleWatcher&) = delete;
  IdleWatcher& operator=(const IdleWatcher&) = delete;

  [[nodiscard]] milliseconds idle() const {
    const auto root = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
    auto* const reply =
        xcb_screensaver_query_info_reply(connection_, xcb_screensaver_query_info_unchecked(connection_, root), nullptr);
    if (reply == nullptr) return milliseconds{-1};
    const milliseconds since{reply->ms_since_user_input};
    std::free(reply);
    return since;
  }

  [[nodiscard]] bool idleReaches(milliseconds time) const {
    const auto bound = steady_clock::now() + std::chrono::seconds(10);
    while (idle() < time && steady_clock::now() < bound) {
    }
    return idle() >= time;
  }

 private:
  xcb_connection_t* const connection_;
};

template <class Call>
milliseconds timeOf(const Call& call) {
  const auto begin = steady_clock::now();
  call();
  return std::chrono::duration_cast<milliseconds>(steady_clock::now() - begin);
}

TEST(XcbScreen, ResetStartsTheIdleTimeAnew) {
  const PrivateDisplay display;
  const IdleWatcher watcher(display.name());
  XcbScreen screen(display.name());
  for (int turn = 0; turn < 2; ++turn) {
    ASSERT_TRUE(watcher.idleReaches(milliseconds(300)));
    milliseconds idle{};
    const auto took = timeOf([&] {
      ASSERT_TRUE(screen.resetScreenSaver());
      idle = watcher.idle();
    });
    EXPECT_LE(idle, took + milliseconds(50));
  }
}

TEST(XcbScreen, ServerThatHasGoneIsAFailureAndNotTheEnd) {
  PrivateDisplay display;
  XcbScreen screen(display.name());
  ASSERT_TRUE(screen.resetScreenSaver());
  display.stop();
  EXPECT_FALSE(screen.resetScreenSaver());
  EXPECT_FALSE(screen.turnOff());
}

TEST(XcbScreen, DisplayThatWasNeverThereIsAFailure) {
  XcbScreen screen("/nonexistent/x11");
  EXPECT_FALSE(screen.resetScreenSaver());
  EXPECT_FALSE(screen.turnOff());
}

TEST(XcbScreen, RealServerWithoutPowerManagementCannotTurnOff) {
  const PrivateDisplay display;
  XcbScreen screen(display.name());
  EXPECT_FALSE(screen.turnOff());
}

TEST(XcbScreen, TurnOffLeavesTheTimeoutsOfAnEnabledDisplay) {
  FakeX11Server server;
  XcbScreen screen(server.display());
  EXPECT_TRUE(screen.turnOff());
  server.stop();
  EXPECT_EQ(server.power.level, XCB_DPMS_DPMS_MODE_OFF);
  EXPECT_EQ(server.power.timeouts, FakeX11Power().timeouts);
}

TEST(XcbScreen, PowerManagementThatWasOffIsSwitchedOnWithoutTimeouts) {
  FakeX11Power off;
  off.enabled = false;
  FakeX11Server server(Manner::serves, off);
  XcbScreen screen(server.display());
  EXPECT_TRUE(screen.turnOff());
  server.stop();
  EXPECT_EQ(server.power.level, XCB_DPMS_DPMS_MODE_OFF);
  EXPECT_EQ(server.power.timeouts, (std::array<std::uint16_t, 3>{0, 0, 0}));
}

TEST(XcbScreen, DisplayThatHasNoPowerManagementIsAFailure) {
  FakeX11Power incapable;
  incapable.capable = false;
  FakeX11Server server(Manner::serves, incapable);
  XcbScreen screen(server.display());
  EXPECT_FALSE(screen.turnOff());
  const FakeX11Server without(Manner::hasNoPowerManagement);
  XcbScreen screenWithout(without.display());
  EXPECT_FALSE(screenWithout.turnOff());
  server.stop();
  EXPECT_EQ(server.power.level, XCB_DPMS_DPMS_MODE_ON);
}

TEST(XcbScreen, ServerThatHangsIsGivenUpAndNotWaitedForAgain) {
  const FakeX11Server server(Manner::hangs);
  XcbScreen screen(server.display());
  const auto patience = timeOf([&] { EXPECT_FALSE(screen.resetScreenSaver()); });
  EXPECT_GE(patience, milliseconds(300)) << "it was reached";
  EXPECT_LT(patience, milliseconds(1000));
  EXPECT_LT(timeOf([&] { EXPECT_FALSE(screen.turnOff()); }), milliseconds(200));
}

TEST(XcbScreen, ServerThatClosesDuringTheGreetingIsAFailure) {
  const FakeX11Server server(Manner::closesInsteadOfAnswering);
  XcbScreen screen(server.display());
  EXPECT_FALSE(screen.resetScreenSaver());
}

TEST(X11ScreenModule, IsLoadedFromItsFolderAndWorks) {
  const PrivateDisplay display;
  DlModuleLoader loader(NIMBO_MODULE_FOLDER);
  const auto screen = x11ScreenFromModule(loader, display.name())();
  ASSERT_NE(screen, nullptr);
  EXPECT_TRUE(screen->resetScreenSaver());
}

TEST(X11ScreenModule, GivesNothingOutsideX11SessionsOrWhenItIsNotInstalled) {
  DlModuleLoader loader(NIMBO_MODULE_FOLDER);
  EXPECT_EQ(x11ScreenFromModule(loader, "")(), nullptr);
  DlModuleLoader nowhere("/nonexistent");
  EXPECT_EQ(x11ScreenFromModule(nowhere, ":0")(), nullptr);
}

}  // namespace
}  // namespace nimbo
