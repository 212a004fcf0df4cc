// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <filesystem>
#include <optional>

#include "platform/linux/desktop/portal_workspace.h"
#include "support/services/private_bus.h"
#include "support/services/recording_service.h"

namespace nimbo {
namespace {

namespace fs = std::filesystem;
using Calls = std::vector<std::string>;

constexpr const char* kClaude = "com.anthropic.claudefordesktop";
constexpr const char* kFiles = "org.freedesktop.FileManager1";
constexpr const char* kFilesPath = "/org/freedesktop/FileManager1";
constexpr const char* kActivation = "Activate /com/anthropic/Claude a{sv}";

class WorkspaceApplicationsTest : public ::testing::Test {
 protected:
  WorkspaceApplicationsTest() {
    addProgram("claude-desktop");
    addProgram("xdg-open");
  }

  /// One that leaves its arguments in a file beside it.
  void addProgram(const std::string& name) const {
    const auto path = tree.write("bin/" + name, "#!/bin/sh\necho \"$@\" > \"$0.new\"\nmv \"$0.new\" \"$0.ran\"\n");
    fs::permissions(path, fs::perms::owner_all);
  }
  void addEntry(const std::string& id, const std::string& keys) const {
    tree.write("applications/" + id + ".desktop", "[Desktop Entry]\nType=Application\nName=Claude\n" + keys);
  }
  [[nodiscard]] bool ran(const std::string& program, const std::string& arguments) const {
    const auto said = [&] { return tree.read("bin/" + program + ".ran"); };
    return loop.runUntil([&] { return !said().empty(); }) && said() == arguments + "\n";
  }
  [[nodiscard]] bool didNotRun(const std::string& program) const {
    return !fs::exists(tree.path() / ("bin/" + program + ".ran"));
  }

  PrivateBus bus;
  BusLoop loop;
  SdBusConnection session{loop.event(), bus.address()};
  TemporaryTree tree;
  const PortalWorkspace::Setup setup{
      "XFCE", (tree.path() / "bin").string() + ":/usr/bin:/bin", "", {tree.path() / "applications"}};
  PortalWorkspace workspace{loop.main(), session.get(), setup};
};

TEST_F(WorkspaceApplicationsTest, ApplicationThatIsNotInstalledIsNotOpened) {
  EXPECT_FALSE(workspace.openApplication(kClaude));
  addEntry("com.anthropic.claudefordesktop", "Exec=gone\n");
  EXPECT_FALSE(workspace.openApplication(kClaude));
}

TEST_F(WorkspaceApplicationsTest, OtherApplicationsAreNotOpened) {
  addEntry("com.example.other", "Exec=claude-desktop\n");
  EXPECT_FALSE(workspace.openApplication("com.example.other"));
}

TEST_F(WorkspaceApplicationsTest, ApplicationIsStartedByItsEntrysCommand) {
  addEntry("claude-desktop", "Exec=claude-desktop --gtk \"two words\" %U\n");
  EXPECT_TRUE(workspace.openApplication(kClaude));
  EXPECT_TRUE(ran("claude-desktop", "--gtk two words"));
}

TEST_F(WorkspaceApplicationsTest, ApplicationThatTakesCallsIsCalledInstead) {
  RecordingService application(loop, bus.address(), "com.anthropic.Claude", "/com/anthropic/Claude");
  addEntry("com.anthropic.Claude", "DBusActivatable=true\nExec=claude-desktop\n");
  EXPECT_TRUE(workspace.openApplication(kClaude));
  EXPECT_TRUE(loop.runUntil([&] { return application.calls == Calls{kActivation}; }));
  EXPECT_TRUE(didNotRun("claude-desktop"));
}

TEST_F(WorkspaceApplicationsTest, ApplicationThatShouldTakeCallsButDoesNotIsStarted) {
  addEntry("com.anthropic.Claude", "DBusActivatable=true\nExec=claude-desktop\n");
  EXPECT_TRUE(workspace.openApplication(kClaude));
  EXPECT_TRUE(ran("claude-desktop", ""));
}

TEST_F(WorkspaceApplicationsTest, WithoutABusApplicationsAreStartedAllTheSame) {
  PortalWorkspace alone(loop.main(), nullptr, setup);
  addEntry("com.anthropic.Claude", "DBusActivatable=true\n");
  EXPECT_FALSE(alone.openApplication(kClaude)) << "there is nobody to call and nothing to run";
  addEntry("com.anthropic.Claude", "DBusActivatable=true\nExec=claude-desktop\n");
  EXPECT_TRUE(alone.openApplication(kClaude));
  EXPECT_TRUE(ran("claude-desktop", ""));
}

TEST_F(WorkspaceApplicationsTest, FileManagerIsAskedToShowTheFile) {
  RecordingService files(loop, bus.address(), kFiles, kFilesPath);
  workspace.revealFile("/home/ada/my file.json");
  EXPECT_TRUE(loop.runUntil([&] { return !files.calls.empty(); }));
  EXPECT_EQ(files.calls, Calls{"ShowItems /org/freedesktop/FileManager1 ass file:///home/ada/my%20file.json"});
  EXPECT_TRUE(didNotRun("xdg-open"));
}

TEST_F(WorkspaceApplicationsTest, WithoutAFileManagerOnTheBusTheFolderIsOpened) {
  workspace.revealFile("/home/ada/my folder/file.json");
  EXPECT_TRUE(ran("xdg-open", "file:///home/ada/my%20folder"));
}

TEST_F(WorkspaceApplicationsTest, FileManagerThatRefusesHasTheFolderOpened) {
  RecordingService files(loop, bus.address(), kFiles, kFilesPath);
  files.refuses = true;
  workspace.revealFile("/home/ada/file.json");
  EXPECT_TRUE(ran("xdg-open", "file:///home/ada"));
}

TEST_F(WorkspaceApplicationsTest, WithoutABusTheFolderIsOpened) {
  PortalWorkspace alone(loop.main(), nullptr, setup);
  alone.revealFile("/home/ada/file.json");
  EXPECT_TRUE(ran("xdg-open", "file:///home/ada"));
}

}  // namespace
}  // namespace nimbo
