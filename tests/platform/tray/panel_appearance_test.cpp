// SPDX-License-Identifier: MIT
#include "platform/linux/tray/panel_appearance.h"

#include <gtest/gtest.h>

#include "support/fake_workspace.h"
#include "support/services/fake_xfconf.h"
#include "support/services/private_bus.h"
#include "support/services/temporary_tree.h"

namespace nimbo {
namespace {

class PanelAppearanceTest : public ::testing::Test {
 protected:
  void make(const std::string& desktop) {
    panel.emplace(PanelAppearance::Services{session.get(), workspace, plasma}, desktop);
    observer = panel->observe([this] { ++changes; });
  }

  [[nodiscard]] bool becomes(Appearance appearance) {
    return loop.runUntil([&] { return panel->appearance() == appearance; });
  }

  PrivateBus bus;
  BusLoop loop;
  SdBusConnection session{loop.event(), bus.address()};
  FakeWorkspace workspace;
  TemporaryTree files;
  PlasmaColors plasma{loop.main(), {files.path() / "config", {files.path() / "data"}}};
  std::optional<PanelAppearance> panel;
  Subscription observer;
  int changes = 0;
};

TEST_F(PanelAppearanceTest, GnomePanelIsAlwaysDark) {
  make("ubuntu:GNOME");
  EXPECT_EQ(panel->appearance(), Appearance::dark);
  workspace.setAppearance(Appearance::dark);
  workspace.setAppearance(Appearance::light);
  EXPECT_EQ(panel->appearance(), Appearance::dark);
  EXPECT_EQ(changes, 0);
}

TEST_F(PanelAppearanceTest, PanelOfTheUsersOwnMakingIsNotKnown) {
  make("sway");
  workspace.setAppearance(Appearance::dark);
  EXPECT_EQ(panel->appearance(), std::nullopt);
  EXPECT_EQ(changes, 0);
}

TEST_F(PanelAppearanceTest, CinnamonPanelHasAThemeOfItsOwn) {
  make("X-Cinnamon");
  EXPECT_EQ(panel->appearance(), std::nullopt);
}

TEST_F(PanelAppearanceTest, OtherPanelsFollowTheDesktop) {
  make("MATE");
  EXPECT_EQ(panel->appearance(), Appearance::light);
  workspace.setAppearance(Appearance::dark);
  EXPECT_EQ(panel->appearance(), Appearance::dark);
  EXPECT_EQ(changes, 1);
}

TEST_F(PanelAppearanceTest, XfcePanelMayBeDarkOnALightDesktop) {
  FakeXfconf xfconf(loop, bus.address());
  xfconf.set("xfce4-panel", "/panels/dark-mode", true);
  make("XFCE");
  EXPECT_TRUE(becomes(Appearance::dark));
  EXPECT_EQ(changes, 1);
}

TEST_F(PanelAppearanceTest, XfcePanelSwitchedInItsSettingsIsFollowed) {
  FakeXfconf xfconf(loop, bus.address());
  make("XFCE");
  xfconf.set("xfce4-panel", "/panels/dark-mode", true);
  ASSERT_TRUE(becomes(Appearance::dark));
  xfconf.set("xfce4-panel", "/panels/dark-mode", false);
  ASSERT_TRUE(becomes(Appearance::light));
  xfconf.set("xfce4-panel", "/panels/dark-mode", true);
  ASSERT_TRUE(becomes(Appearance::dark));
  xfconf.remove("xfce4-panel", "/panels/dark-mode");
  EXPECT_TRUE(becomes(Appearance::light));
  EXPECT_EQ(changes, 4);
}

TEST_F(PanelAppearanceTest, XfcePanelThatIsNotSetToDarkFollowsADarkDesktop) {
  FakeXfconf xfconf(loop, bus.address());
  xfconf.set("xfce4-panel", "/panels/dark-mode", false);
  workspace.setAppearance(Appearance::dark);
  make("XFCE");
  ASSERT_TRUE(loop.runUntil([&] { return xfconf.asked == 1; }));
  EXPECT_EQ(panel->appearance(), Appearance::dark);
}

TEST_F(PanelAppearanceTest, SettingOfAnotherTypeCountsAsNone) {
  FakeXfconf xfconf(loop, bus.address());
  xfconf.set("xfce4-panel", "/panels/dark-mode", true);
  make("XFCE");
  ASSERT_TRUE(becomes(Appearance::dark));
  xfconf.set("xfce4-panel", "/panels/dark-mode", std::string("yes"));
  EXPECT_TRUE(becomes(Appearance::light));
}

TEST_F(PanelAppearanceTest, PlasmaPanelMayBeDarkOnALightDesktop) {
  files.write("data/plasma/desktoptheme/breeze-dark/colors", "[Colors:Window]\nBackgroundNormal=42,46,50\n");
  files.write("config/kdedefaults/plasmarc", "[Theme]\nname=breeze-dark\n");
  make("KDE");
  EXPECT_EQ(panel->appearance(), Appearance::dark);
  files.write("config/plasmarc", "[Theme]\nname=default\n");
  EXPECT_TRUE(becomes(Appearance::light));
  EXPECT_EQ(changes, 1);
}

TEST_F(PanelAppearanceTest, WithoutXfconfTheDesktopDecides) {
  make("XFCE");
  workspace.setAppearance(Appearance::dark);
  EXPECT_EQ(panel->appearance(), Appearance::dark);
}

}  // namespace
}  // namespace nimbo
