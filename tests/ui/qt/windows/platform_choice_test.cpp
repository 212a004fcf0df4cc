// SPDX-License-Identifier: MIT
#include "ui/qt/linux/platform_choice.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdlib>

#include "support/services/private_display.h"
#include "support/services/temporary_tree.h"

namespace nimbo {
namespace {

constexpr auto kUsable = [] { return true; };
constexpr auto kAbsent = [] { return false; };

TEST(PlatformChoice, X11ComesFirstBecauseWindowsCanBePlacedThere) {
  EXPECT_EQ(choosePlatform("", kUsable, kUsable), "xcb");
  EXPECT_EQ(choosePlatform("wayland", kUsable, kUsable), "xcb");
  EXPECT_EQ(choosePlatform("wayland;xcb", kUsable, kUsable), "xcb");
}

TEST(PlatformChoice, WaylandServesWhereThereIsNoX11) {
  EXPECT_EQ(choosePlatform("", kAbsent, kUsable), "wayland");
  EXPECT_EQ(choosePlatform("xcb", kAbsent, kUsable), "wayland");
}

TEST(PlatformChoice, NoDisplayGivesNone) { EXPECT_EQ(choosePlatform("", kAbsent, kAbsent), std::nullopt); }

TEST(PlatformChoice, OtherPlatformsAreUsedWhenAskedFor) {
  const auto mustNotAsk = []() -> bool { throw std::logic_error("asked"); };
  EXPECT_EQ(choosePlatform("offscreen", mustNotAsk, mustNotAsk), "offscreen");
  EXPECT_EQ(choosePlatform("vnc:size=800x600", mustNotAsk, mustNotAsk), "vnc:size=800x600");
}

TEST(PlatformChoice, X11AnswersWhileItsServerRuns) {
  PrivateDisplay display;
  EXPECT_TRUE(x11Answers());
  const std::string name = display.name();
  display.stop();
  EXPECT_FALSE(x11Answers()) << "no DISPLAY";
  setenv("DISPLAY", name.c_str(), 1);
  EXPECT_FALSE(x11Answers()) << "the server is gone";
  setenv("DISPLAY", "nonsense", 1);
  EXPECT_FALSE(x11Answers());
}

TEST(PlatformChoice, WaylandAnswersOnlyOnASocketThatAccepts) {
  const TemporaryTree tree;
  const std::string folder = tree.path().string();
  setenv("XDG_RUNTIME_DIR", folder.c_str(), 1);
  unsetenv("WAYLAND_DISPLAY");
  EXPECT_FALSE(waylandAnswers());
  setenv("WAYLAND_DISPLAY", "wayland-7", 1);
  EXPECT_FALSE(waylandAnswers()) << "no such socket";

  const std::string path = folder + "/wayland-7";
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path.copy(address.sun_path, sizeof address.sun_path - 1);
  const int server = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  ASSERT_EQ(bind(server, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  EXPECT_FALSE(waylandAnswers()) << "nobody listens";
  ASSERT_EQ(listen(server, 1), 0);
  EXPECT_TRUE(waylandAnswers());
  setenv("WAYLAND_DISPLAY", path.c_str(), 1);
  EXPECT_TRUE(waylandAnswers()) << "whole path";
  setenv("WAYLAND_DISPLAY", std::string(200, 'x').c_str(), 1);
  EXPECT_FALSE(waylandAnswers()) << "longer than any socket's path";
  close(server);
}

}  // namespace
}  // namespace nimbo
