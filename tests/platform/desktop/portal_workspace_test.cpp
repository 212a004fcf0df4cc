// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/portal_workspace.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>

#include "support/services/fake_settings_portal.h"
#include "support/services/fake_xfconf.h"
#include "support/services/private_bus.h"

namespace nimbo {
namespace {

class PortalWorkspaceTest : public ::testing::Test {
 protected:
  PortalWorkspace& make(PortalWorkspace::Setup setup = {}) {
    workspace.emplace(loop.main(), session.get(), std::move(setup));
    observer = workspace->observeAppearance([this](Appearance appearance) { changes.push_back(appearance); });
    return *workspace;
  }

  [[nodiscard]] bool becomes(Appearance appearance) {
    return loop.runUntil([&] { return workspace->appearance() == appearance; });
  }

  /// Everything sent to the workspace so far has arrived after these.
  void settle(const BusPeer& peer) const {
    const char* name = nullptr;
    sd_bus_get_unique_name(session.get(), &name);
    for (int round = 0; round < 3; ++round) peer.settle(name);
  }

  PrivateBus bus;
  BusLoop loop;
  SdBusConnection session{loop.event(), bus.address()};
  std::optional<PortalWorkspace> workspace;
  Subscription observer;
  std::vector<Appearance> changes;
};

TEST_F(PortalWorkspaceTest, IsLightUntilTheDesktopHasAnswered) {
  EXPECT_EQ(make().appearance(), Appearance::light);
  EXPECT_TRUE(changes.empty());
}

TEST_F(PortalWorkspaceTest, DarkSchemeOfThePortalIsTold) {
  const FakeSettingsPortal portal(loop, bus.address(), 1);
  make();
  EXPECT_TRUE(becomes(Appearance::dark));
  EXPECT_EQ(changes, std::vector{Appearance::dark});
  EXPECT_EQ(portal.asked, std::vector<std::string>{"ReadOne"});
}

TEST_F(PortalWorkspaceTest, FirstVersionOfThePortalIsUnderstood) {
  const FakeSettingsPortal portal(loop, bus.address(), 1, 1);
  make();
  EXPECT_TRUE(becomes(Appearance::dark));
  EXPECT_EQ(portal.asked, std::vector<std::string>{"Read"});
}

TEST_F(PortalWorkspaceTest, ChangesAreToldOnceEach) {
  FakeSettingsPortal portal(loop, bus.address(), 2);
  make();
  settle(portal.peer);
  for (const std::uint32_t scheme : {1U, 1U, 0U, 2U, 1U}) portal.set(scheme);
  settle(portal.peer);
  EXPECT_EQ(changes, (std::vector{Appearance::dark, Appearance::light, Appearance::dark}));
}

TEST_F(PortalWorkspaceTest, SchemeOfAnotherTypeIsIgnored) {
  FakeSettingsPortal portal(loop, bus.address(), 1);
  make();
  ASSERT_TRUE(becomes(Appearance::dark));
  portal.sendTextInsteadOfANumber();
  settle(portal.peer);
  EXPECT_EQ(workspace->appearance(), Appearance::dark);
}

TEST_F(PortalWorkspaceTest, PortalThatStartsLateIsAsked) {
  make();
  settle(BusPeer(loop, bus.address()));
  const FakeSettingsPortal portal(loop, bus.address(), 1);
  EXPECT_TRUE(becomes(Appearance::dark));
}

TEST_F(PortalWorkspaceTest, WithoutPreferenceTheXfceThemeDecides) {
  FakeXfconf xfconf(loop, bus.address());
  const FakeSettingsPortal portal(loop, bus.address(), 0);
  xfconf.set("xsettings", "/Net/ThemeName", std::string("Greybird-dark"));
  make({"XFCE", "", ""});
  EXPECT_TRUE(becomes(Appearance::dark));
  xfconf.set("xsettings", "/Net/ThemeName", std::string("Greybird"));
  EXPECT_TRUE(becomes(Appearance::light));
}

TEST_F(PortalWorkspaceTest, WithoutPortalTheXfceThemeDecides) {
  FakeXfconf xfconf(loop, bus.address());
  make({"XFCE", "", ""});
  xfconf.set("xsettings", "/Net/ThemeName", std::string("Adwaita-dark"));
  EXPECT_TRUE(becomes(Appearance::dark));
  xfconf.remove("xsettings", "/Net/ThemeName");
  EXPECT_TRUE(becomes(Appearance::light));
}

TEST_F(PortalWorkspaceTest, PortalsPreferenceBeatsTheTheme) {
  FakeXfconf xfconf(loop, bus.address());
  const FakeSettingsPortal portal(loop, bus.address(), 2);
  xfconf.set("xsettings", "/Net/ThemeName", std::string("Adwaita-dark"));
  make({"XFCE", "", ""});
  settle(portal.peer);
  settle(xfconf.peer);
  EXPECT_EQ(workspace->appearance(), Appearance::light);
}

TEST_F(PortalWorkspaceTest, XfconfIsNotAskedOnOtherDesktops) {
  const FakeXfconf xfconf(loop, bus.address());
  make({"KDE", "", ""});
  settle(xfconf.peer);
  EXPECT_EQ(xfconf.asked, 0);
}

TEST_F(PortalWorkspaceTest, GtkThemeOfTheEnvironmentIsTheLastResort) {
  EXPECT_EQ(make({"", "", "Adwaita:dark"}).appearance(), Appearance::dark);
  EXPECT_EQ(make({"", "", "Materia-Dark"}).appearance(), Appearance::dark);
  EXPECT_EQ(make({"", "", "Darkroom"}).appearance(), Appearance::light);
}

TEST_F(PortalWorkspaceTest, WithoutABusItIsLight) {
  PortalWorkspace alone(loop.main(), nullptr, {"XFCE", "", ""});
  EXPECT_EQ(alone.appearance(), Appearance::light);
}

TEST_F(PortalWorkspaceTest, EndedSubscriptionHearsNothing) {
  FakeSettingsPortal portal(loop, bus.address(), 2);
  make();
  observer.reset();
  portal.set(1);
  EXPECT_TRUE(becomes(Appearance::dark));
  EXPECT_TRUE(changes.empty());
}

TEST_F(PortalWorkspaceTest, DesktopsOwnSystemMonitorIsOpened) {
  const TemporaryTree tree;
  for (const char* name : {"gnome-system-monitor", "xfce4-taskmanager"}) {
    const auto path = tree.write(name, "#!/bin/sh\ntouch \"$0.ran\"\n");
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
  }
  PortalWorkspace& desktop = make({"XFCE", tree.path().string() + ":/usr/bin:/bin", ""});
  EXPECT_TRUE(desktop.hasSystemMonitor());
  EXPECT_TRUE(desktop.openSystemMonitor());
  EXPECT_TRUE(loop.runUntil([&] { return std::filesystem::exists(tree.path() / "xfce4-taskmanager.ran"); }));
  EXPECT_FALSE(std::filesystem::exists(tree.path() / "gnome-system-monitor.ran"));
}

TEST_F(PortalWorkspaceTest, DesktopWithoutASystemMonitorSaysSo) {
  const TemporaryTree tree;
  PortalWorkspace& desktop = make({"XFCE", tree.path().string(), ""});
  EXPECT_FALSE(desktop.hasSystemMonitor());
  EXPECT_FALSE(desktop.openSystemMonitor());
}

}  // namespace
}  // namespace nimbo
