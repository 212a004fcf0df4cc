// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/plasma_colors.h"

#include <gtest/gtest.h>

#include "support/services/private_bus.h"
#include "support/services/temporary_tree.h"

namespace nimbo {
namespace {

constexpr const char* kDark = "[Colors:Window]\nBackgroundNormal=42,46,50\n";
constexpr const char* kLight = "[Colors:Window]\nBackgroundNormal=239, 240, 241\n";

class PlasmaColorsTest : public ::testing::Test {
 protected:
  BusLoop loop;
  TemporaryTree files;
  PlasmaColors colors{loop.main(), {files.path() / "config", {files.path() / "own", files.path() / "system"}}};
};

TEST_F(PlasmaColorsTest, NothingIsKnownWithoutFiles) {
  EXPECT_EQ(colors.ofWindows(), std::nullopt);
  EXPECT_EQ(colors.ofPanels(), std::nullopt);
}

TEST_F(PlasmaColorsTest, WindowsFollowTheColoursInTheUsersSettings) {
  files.write("config/kdeglobals", std::string("[General]\nColorScheme=BreezeLight\n\n") + kDark);
  EXPECT_EQ(colors.ofWindows(), Appearance::dark);
  files.write("config/kdeglobals", kLight);
  EXPECT_EQ(colors.ofWindows(), Appearance::light);
}

TEST_F(PlasmaColorsTest, GlobalThemeCountsWhereTheUserHasSetNothing) {
  files.write("config/kdedefaults/kdeglobals", kDark);
  EXPECT_EQ(colors.ofWindows(), Appearance::dark);
  files.write("config/kdeglobals", kLight);
  EXPECT_EQ(colors.ofWindows(), Appearance::light);
}

TEST_F(PlasmaColorsTest, SchemeThatIsOnlyNamedIsLookedUp) {
  files.write("config/kdedefaults/kdeglobals", "[General]\nColorScheme=BreezeDark\n");
  files.write("system/color-schemes/BreezeDark.colors", kDark);
  EXPECT_EQ(colors.ofWindows(), Appearance::dark);
  files.write("own/color-schemes/BreezeDark.colors", kLight);
  EXPECT_EQ(colors.ofWindows(), Appearance::light);
}

TEST_F(PlasmaColorsTest, PanelsFollowTheirStyleAndElseTheWindows) {
  files.write("config/kdeglobals", kLight);
  EXPECT_EQ(colors.ofPanels(), Appearance::light);
  files.write("system/plasma/desktoptheme/breeze-dark/colors", kDark);
  files.write("config/kdedefaults/plasmarc", "[Theme]\nname=breeze-dark\n");
  EXPECT_EQ(colors.ofPanels(), Appearance::dark);
  EXPECT_EQ(colors.ofWindows(), Appearance::light);
}

TEST_F(PlasmaColorsTest, RubbishCountsAsNothing) {
  for (const char* const color : {"", "1,2", "a,b,c", "256,0,0", "-1,0,0", "#2a2e32"}) {
    files.write("config/kdeglobals", std::string("[Colors:Window]\nBackgroundNormal=") + color + "\n");
    EXPECT_EQ(colors.ofWindows(), std::nullopt) << color;
  }
}

TEST_F(PlasmaColorsTest, ObserverIsToldOfTheseFilesOnly) {
  files.write("config/kdedefaults/plasmarc", "");
  int changes = 0;
  const auto observer = colors.observe([&] { ++changes; });
  files.write("config/konsolerc", "");
  files.write("config/kdeglobals", kDark);
  ASSERT_TRUE(loop.runUntil([&] { return changes > 0; }));
  EXPECT_EQ(colors.ofWindows(), Appearance::dark);
  changes = 0;
  files.write("config/kdedefaults/plasmarc", "[Theme]\n");
  ASSERT_TRUE(loop.runUntil([&] { return changes > 0; }));
  changes = 0;
  // As KDE's settings are written for the first time.
  std::filesystem::create_hard_link(files.write("ready", "[Theme]\n"), files.path() / "config/plasmarc");
  EXPECT_TRUE(loop.runUntil([&] { return changes > 0; }));
}

}  // namespace
}  // namespace nimbo
