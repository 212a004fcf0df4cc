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

constexpr auto kYes = [] { return true; };
constexpr auto kNo = [] { return false; };
bool mustNotAsk() { throw std::logic_error("asked"); }

const DisplayQuestions kLayers{
    .x11Usable = kYes, .waylandAnswers = kYes, .waylandPluginLoads = kYes, .windowsHangOnWayland = kYes};
const DisplayQuestions kXwayland{
    .x11Usable = kYes, .waylandAnswers = kYes, .waylandPluginLoads = mustNotAsk, .windowsHangOnWayland = kNo};
const DisplayQuestions kPlainWayland{
    .x11Usable = kNo, .waylandAnswers = kYes, .waylandPluginLoads = kYes, .windowsHangOnWayland = kNo};
const DisplayQuestions kX11{
    .x11Usable = kYes, .waylandAnswers = kNo, .waylandPluginLoads = mustNotAsk, .windowsHangOnWayland = mustNotAsk};

TEST(PlatformChoice, WaylandComesFirstWhereTheDashboardCanHangFromItsItem) {
  EXPECT_EQ(choosePlatform("", kLayers), "wayland");
  EXPECT_EQ(choosePlatform("wayland;xcb", kLayers), "wayland");
  EXPECT_EQ(choosePlatform("", kXwayland), "xcb");
  EXPECT_EQ(choosePlatform("wayland", kXwayland), "xcb");
}

TEST(PlatformChoice, X11ThatIsAskedForFirstComesFirst) {
  EXPECT_EQ(choosePlatform("xcb", kLayers), "xcb");
  EXPECT_EQ(choosePlatform("xcb;wayland", kLayers), "xcb");
  EXPECT_EQ(choosePlatform("", kX11), "xcb");
}

TEST(PlatformChoice, WaylandServesWhereThereIsNoX11) {
  EXPECT_EQ(choosePlatform("", kPlainWayland), "wayland");
  EXPECT_EQ(choosePlatform("xcb", kPlainWayland), "wayland");
}

TEST(PlatformChoice, MissingPluginForWaylandMattersOnlyWithoutX11) {
  auto ask = kLayers;
  ask.waylandPluginLoads = kNo;
  EXPECT_EQ(choosePlatform("", ask), "xcb");
  ask.x11Usable = kNo;
  EXPECT_EQ(choosePlatform("", ask), tl::unexpected(WindowsEnd::noWaylandPlugin));
}

TEST(PlatformChoice, NoDisplayGivesNone) {
  auto ask = kX11;
  ask.x11Usable = kNo;
  EXPECT_EQ(choosePlatform("", ask), tl::unexpected(WindowsEnd::noDisplay));
}

TEST(PlatformChoice, OtherPlatformsAreUsedWhenAskedFor) {
  const DisplayQuestions none{mustNotAsk, mustNotAsk, mustNotAsk, mustNotAsk};
  EXPECT_EQ(choosePlatform("offscreen", none), "offscreen");
  EXPECT_EQ(choosePlatform("vnc:size=800x600", none), "vnc:size=800x600");
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
