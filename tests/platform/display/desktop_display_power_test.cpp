// SPDX-License-Identifier: MIT
#include "platform/linux/display/desktop_display_power.h"

#include <memory>
#include <optional>

#include "platform/contracts/display_power_contract.h"
#include "platform/linux/display/wayland/wayland_display.h"
#include "support/fake_display_power.h"
#include "support/fake_main_loop.h"
#include "support/fake_x11_screen.h"
#include "support/services/bus_peer.h"
#include "support/services/fake_compositor.h"
#include "support/services/private_bus.h"

namespace nimbo {
namespace {

using std::chrono::milliseconds;

/// A service of the desktop with one method that has one argument.
class FakeDesktopService {
 public:
  FakeDesktopService(BusLoop& loop, const std::string& address, const std::string& name, const char* path,
                     std::string method)
      : peer(loop, address), method_(std::move(method)) {
    sd_bus_slot* slot = nullptr;
    sd_bus_add_object(peer.bus(), &slot, path, onCall, this);
    object_.reset(slot);
    peer.own(name);
  }

  BusPeer peer;
  bool refuses = false;
  std::vector<std::string> calls;  ///< with the argument

 private:
  static int onCall(sd_bus_message* call, void* self, sd_bus_error* error) {
    auto& fake = *static_cast<FakeDesktopService*>(self);
    const std::string method = std::string(sd_bus_message_get_interface(call)) + "." + sd_bus_message_get_member(call);
    if (method != fake.method_) return 0;
    if (fake.refuses) return sd_bus_error_set(error, "org.freedesktop.DBus.Error.AccessDenied", "no");
    fake.calls.push_back(argument(call));
    return sd_bus_reply_method_return(call, "");
  }

  static std::string argument(sd_bus_message* call) {
    const char* text = nullptr;
    if (sd_bus_message_has_signature(call, "s") > 0 && sd_bus_message_read(call, "s", &text) > 0) return text;
    int flag = 0;
    if (sd_bus_message_has_signature(call, "b") > 0 && sd_bus_message_read(call, "b", &flag) > 0) {
      return flag != 0 ? "true" : "false";
    }
    return "something else";
  }

  const std::string method_;
  BusSlot object_;
};

struct DesktopHost : DisplayPowerHost {
  using Makers = DesktopDisplayPower::Makers;

  [[nodiscard]] DisplayPower& power() override { return *desktop; }
  void destroyPower() override { desktop.reset(); }
  void offerNothing() override { desktop.emplace(timers, nullptr, "", Makers()); }

  FakeMainLoop timers;
  std::optional<DesktopDisplayPower> desktop;
};

struct X11Host final : DesktopHost {
  X11Host() { desktop.emplace(timers, nullptr, "XFCE", Makers{x11.maker(), {}}); }
  void refuse() override { x11.works = false; }
  void settle() override {
    timers.advance(milliseconds(700));
    EXPECT_TRUE(timers.repeatingTimers().empty());
  }
  [[nodiscard]] int timesDark() const override { return x11.turnedOff; }

  FakeX11Screen x11;
};

struct GnomeHost final : DesktopHost {
  GnomeHost() { desktop.emplace(timers, session.get(), "GNOME", Makers()); }
  void refuse() override { saver.refuses = true; }
  /// By a call behind all others.
  void settle() override {
    bool isAnswered = false;
    const BusMethod ping{"org.gnome.ScreenSaver", "/", "org.freedesktop.DBus.Peer", "Ping"};
    const auto call = callAsync(methodCall(session.get(), ping), [&](sd_bus_message*) { isAnswered = true; });
    EXPECT_TRUE(loop.runUntil([&] { return isAnswered; }));
  }
  [[nodiscard]] int timesDark() const override { return static_cast<int>(saver.calls.size()); }

  PrivateBus bus;
  BusLoop loop;
  FakeDesktopService saver{loop, bus.address(), "org.gnome.ScreenSaver", "/org/gnome/ScreenSaver",
                           "org.gnome.ScreenSaver.SetActive"};
  SdBusConnection session{loop.event(), bus.address()};
};

/// With two outputs.
struct WaylandHost final : DesktopHost {
  WaylandHost() {
    offer(FakeCompositor::Power::works);
    desktop.emplace(timers, nullptr, "sway",
                    Makers{{}, [this] { return std::make_unique<WaylandDisplay>(timers, compositor->socket()); }});
  }
  void refuse() override { offer(FakeCompositor::Power::refuses); }
  /// All of it is in this process, where few turns bring everything.
  void settle() override {
    const auto turn = [this] {
      for (int times = 0; times < 20; ++times) timers.runReadable();
    };
    turn();
    compositor->pause();
    turn();
    dark += compositor->lit() == 0 ? 1 : 0;
    compositor->moveMouse();
    turn();
    EXPECT_EQ(compositor->lit(), 2);
    EXPECT_FALSE(compositor->hasClient());
    EXPECT_TRUE(timers.repeatingTimers().empty());
  }
  [[nodiscard]] int timesDark() const override { return dark; }

  void offer(FakeCompositor::Power power) { compositor.emplace(timers, FakeCompositor::Idle::ext, power, 2); }

  std::optional<FakeCompositor> compositor;
  int dark = 0;
};

INSTANTIATE_TEST_SUITE_P(X11, DisplayPowerContract, testing::Values(makeDisplayPowerHost<X11Host>));
INSTANTIATE_TEST_SUITE_P(Gnome, DisplayPowerContract, testing::Values(makeDisplayPowerHost<GnomeHost>));
INSTANTIATE_TEST_SUITE_P(Wayland, DisplayPowerContract, testing::Values(makeDisplayPowerHost<WaylandHost>));
INSTANTIATE_TEST_SUITE_P(Linux, WaitingDisplayPowerContract,
                         testing::Values(makeDisplayPowerHost<X11Host>, makeDisplayPowerHost<WaylandHost>));

class DesktopDisplayPowerTest : public ::testing::Test {
 protected:
  void useDesktop(const std::string& desktop, bool x11Session) {
    const X11ScreenMaker makeX11 = x11Session ? x11.maker() : X11ScreenMaker();
    power.emplace(timers, session.get(), desktop, DesktopDisplayPower::Makers{makeX11, makeWayland});
  }

  [[nodiscard]] auto sleepNow() {
    return power->sleepNow([this] { ++failures; });
  }

  PrivateBus bus;
  BusLoop loop;
  SdBusConnection session{loop.event(), bus.address()};
  FakeMainLoop timers;
  FakeX11Screen x11;
  WaylandDisplayMaker makeWayland = [] { return nullptr; };
  std::optional<DesktopDisplayPower> power;
  int failures = 0;
};

TEST_F(DesktopDisplayPowerTest, X11DisplayGoesOffOnceAfterTheKeyIsLetGo) {
  useDesktop("XFCE", true);
  const auto request = sleepNow();
  ASSERT_TRUE(request);
  timers.advance(milliseconds(600));
  EXPECT_EQ(x11.turnedOff, 0);
  timers.advance(milliseconds(100));
  EXPECT_EQ(x11.turnedOff, 1);
  EXPECT_TRUE(timers.repeatingTimers().empty());
  EXPECT_EQ(failures, 0);
}

TEST_F(DesktopDisplayPowerTest, X11ModuleIsLoadedForTheFirstRequestOnly) {
  useDesktop("XFCE", true);
  EXPECT_EQ(x11.made, 0);
  for (int turn = 0; turn < 2; ++turn) {
    const auto request = sleepNow();
    timers.advance(milliseconds(700));
  }
  EXPECT_EQ(x11.made, 1);
  EXPECT_EQ(x11.turnedOff, 2);
}

TEST_F(DesktopDisplayPowerTest, RequestMayOutliveIt) {
  useDesktop("XFCE", true);
  const auto request = sleepNow();
  ASSERT_TRUE(request);
  power.reset();
  timers.advance(milliseconds(700));
  EXPECT_EQ(x11.turnedOff, 1);
}

TEST_F(DesktopDisplayPowerTest, PlasmaOnWaylandIsAskedByItsShortcut) {
  FakeDesktopService shortcuts(loop, bus.address(), "org.kde.kglobalaccel", "/component/org_kde_powerdevil",
                               "org.kde.kglobalaccel.Component.invokeShortcut");
  useDesktop("KDE", false);
  const auto request = sleepNow();
  ASSERT_TRUE(request);
  ASSERT_TRUE(loop.runUntil([&] { return !shortcuts.calls.empty(); }));
  EXPECT_EQ(shortcuts.calls, std::vector<std::string>{"Turn Off Screen"});
  EXPECT_EQ(x11.made, 0);
}

TEST_F(DesktopDisplayPowerTest, GnomeOnWaylandIsAskedForItsScreenSaver) {
  FakeDesktopService saver(loop, bus.address(), "org.gnome.ScreenSaver", "/org/gnome/ScreenSaver",
                           "org.gnome.ScreenSaver.SetActive");
  useDesktop("ubuntu:GNOME", false);
  const auto request = sleepNow();
  ASSERT_TRUE(request);
  ASSERT_TRUE(loop.runUntil([&] { return !saver.calls.empty(); }));
  EXPECT_EQ(saver.calls, std::vector<std::string>{"true"});
  saver.peer.settle("org.freedesktop.DBus");
  EXPECT_EQ(failures, 0);
}

TEST_F(DesktopDisplayPowerTest, ServiceThatDoesNotRunIsToldLater) {
  useDesktop("KDE", false);
  const auto request = sleepNow();
  ASSERT_TRUE(request);
  EXPECT_TRUE(loop.runUntil([this] { return failures == 1; }));
}

TEST_F(DesktopDisplayPowerTest, OtherWaylandDesktopsAreAskedByTheirCompositor) {
  int made = 0;
  FakeDisplayPower* compositor = nullptr;
  makeWayland = [&] {
    auto display = std::make_unique<FakeDisplayPower>();
    compositor = display.get();
    ++made;
    return display;
  };
  useDesktop("sway", false);
  for (int turn = 1; turn <= 2; ++turn) {
    const auto request = sleepNow();
    ASSERT_TRUE(request);
    EXPECT_EQ(compositor->requests, turn);
    EXPECT_EQ(made, 1);
  }
}

TEST_F(DesktopDisplayPowerTest, DesktopWithoutAWaySaysSo) {
  for (const char* desktop : {"XFCE", ""}) {
    useDesktop(desktop, false);
    const auto request = sleepNow();
    ASSERT_FALSE(request);
    EXPECT_EQ(request.error().description, "This desktop offers no way to turn the display off.");
  }
}

TEST_F(DesktopDisplayPowerTest, WithoutASessionBusThereIsNoWay) {
  power.emplace(timers, nullptr, "KDE", DesktopDisplayPower::Makers{});
  EXPECT_FALSE(sleepNow());
}

}  // namespace
}  // namespace nimbo
