// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/linux_wording.h"

#include <gtest/gtest.h>

#include "platform/linux/desktop/desktop_programs.h"
#include "support/services/temporary_tree.h"

namespace nimbo {
namespace {

namespace fs = std::filesystem;

/// A machine with the programs and desktop entries that a test puts there.
class SystemMonitorTest : public ::testing::Test {
 protected:
  void install(const std::string& program) {
    fs::permissions(tree.write("bin/" + program, "#!/bin/sh\n"), fs::perms::owner_all);
  }
  void describe(const std::string& desktopId, const std::string& entry) {
    tree.write("applications/" + desktopId + ".desktop", "[Desktop Entry]\n" + entry);
  }
  [[nodiscard]] std::string programOn(const std::string& desktop) const {
    const auto monitor = findSystemMonitor(desktop, searchPath);
    return monitor ? fs::path(monitor->path).filename().string() : "";
  }
  [[nodiscard]] std::string nameOn(const std::string& desktop) const {
    return linuxWording(desktop, searchPath, {tree.path() / "applications"}).systemMonitor;
  }

  const TemporaryTree tree;
  const std::string searchPath = (tree.path() / "bin").string();
};

TEST_F(SystemMonitorTest, DesktopsOwnProgramComesFirstAndAnyIsBetterThanNone) {
  EXPECT_EQ(programOn("XFCE"), "");
  install("gnome-system-monitor");
  install("plasma-systemmonitor");
  install("ksysguard");
  EXPECT_EQ(programOn("XFCE"), "gnome-system-monitor");
  install("xfce4-taskmanager");
  install("qps");
  EXPECT_EQ(programOn("XFCE"), "xfce4-taskmanager");
  EXPECT_EQ(programOn("LXQt"), "qps");
  EXPECT_EQ(programOn("ubuntu:GNOME"), "gnome-system-monitor");
  EXPECT_EQ(programOn("KDE"), "plasma-systemmonitor");
}

TEST_F(SystemMonitorTest, IsCalledAsItsDesktopEntrySays) {
  install("xfce4-taskmanager");
  describe("xfce4-taskmanager", "Name=Task Manager\nName[de]=Systemüberwachung\nExec=xfce4-taskmanager\n");
  install("mate-system-monitor");
  describe("mate-system-monitor", "Name=MATE System Monitor\n");
  EXPECT_EQ(nameOn("XFCE"), "Task Manager");
  EXPECT_EQ(nameOn("MATE"), "System Monitor") << "has no room on the button";
}

TEST_F(SystemMonitorTest, EntriesOfOlderVersionsCountToo) {
  install("gnome-system-monitor");
  describe("gnome-system-monitor", "Name=Older\n");
  EXPECT_EQ(nameOn("GNOME"), "Older");
  describe("org.gnome.SystemMonitor", "Name=Newer\n");
  EXPECT_EQ(nameOn("GNOME"), "Newer");
}

TEST_F(SystemMonitorTest, WithoutAProgramOrANameItIsCalledByWhatItIs) {
  describe("qps", "Name=Processes\n");
  EXPECT_EQ(nameOn("LXQt"), "System Monitor") << "not installed";
  install("qps");
  EXPECT_EQ(nameOn("LXQt"), "Processes");
  describe("qps", "Name=\n");
  EXPECT_EQ(nameOn("LXQt"), "System Monitor");
}

}  // namespace
}  // namespace nimbo
