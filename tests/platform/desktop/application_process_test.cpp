// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/desktop_application.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "support/services/temporary_tree.h"

namespace nimbo {
namespace {

using Words = std::vector<std::string>;

std::string commandLineOf(const Words& words) {
  std::string text;
  for (const auto& word : words) text += word + '\0';
  return text;
}

class ApplicationProcessTest : public testing::Test {
 protected:
  void addProcess(int pid, const std::string& executable, const Words& words = {}) const {
    const auto folder = proc.path() / std::to_string(pid);
    std::filesystem::create_directories(folder);
    std::filesystem::create_symlink(executable, folder / "exe");
    proc.write(std::to_string(pid) + "/cmdline", commandLineOf(words));
  }

  [[nodiscard]] bool is(int pid, ProcessShows shows = ProcessShows::windows) const {
    return isProcessOf(marks, proc.path().string(), pid, shows);
  }
  [[nodiscard]] bool electronRunning(const Words& words) const {
    static int pid = 100;
    addProcess(++pid, "/usr/lib/electron30/electron", words);
    return is(pid);
  }

  const ApplicationMarks marks{"org.example.diary", {"diary-desktop", "Diary"}, {"diary"}};
  TemporaryTree proc;
};

TEST_F(ApplicationProcessTest, ExecutableOfThatNameIsTheApplication) {
  addProcess(1, "/opt/Diary/diary-desktop");
  addProcess(2, "/tmp/.mount_DiaryX/Diary");
  EXPECT_TRUE(is(1));
  EXPECT_TRUE(is(2));
}

TEST_F(ApplicationProcessTest, BrowserWithItsNameInAFolderOrArgumentIsNot) {
  addProcess(1, "/opt/google/chrome/chrome", {"chrome", "--app=https://Diary/diary-desktop"});
  addProcess(2, "/home/Diary/firefox");
  EXPECT_FALSE(is(1));
  EXPECT_FALSE(is(2));
}

TEST_F(ApplicationProcessTest, NameIsComparedWhole) {
  addProcess(1, "/usr/bin/diary-desktop-helper");
  addProcess(2, "/usr/bin/DIARY");
  EXPECT_FALSE(is(1));
  EXPECT_FALSE(is(2));
}

TEST_F(ApplicationProcessTest, ExecutableReplacedByAnUpdateStillCounts) {
  addProcess(1, "/opt/Diary/diary-desktop (deleted)");
  EXPECT_TRUE(is(1));
}

TEST_F(ApplicationProcessTest, AmbiguousNameCountsOnlyWithWindows) {
  addProcess(1, "/home/me/.local/bin/diary");
  EXPECT_TRUE(is(1, ProcessShows::windows));
  EXPECT_FALSE(is(1, ProcessShows::perhapsNothing));
  EXPECT_FALSE(isRunning(marks, proc.path().string()));
}

TEST_F(ApplicationProcessTest, ElectronIsKnownByTheProgramThatItRuns) {
  EXPECT_TRUE(electronRunning({"electron", "/usr/lib/diary-desktop/app.asar"}));
  EXPECT_TRUE(electronRunning({"electron", "--no-sandbox", "/opt/Diary/resources/app.asar", "--flag"}));
  EXPECT_TRUE(electronRunning({"electron", "/usr/share/diary-desktop.asar"}));
  EXPECT_TRUE(electronRunning({"electron", "/opt/Diary/resources/app"}));
}

TEST_F(ApplicationProcessTest, ElectronThatRunsSomethingElseIsNot) {
  EXPECT_FALSE(electronRunning({"electron", "/home/Diary/editor/app.asar"}));
  EXPECT_FALSE(electronRunning({"electron", "/opt/Diary/other.asar"}));
  EXPECT_FALSE(electronRunning({"electron", "/opt/editor/app.asar", "/opt/Diary/app.asar"}));
  EXPECT_FALSE(electronRunning({"electron", "--type=renderer"}));
  EXPECT_FALSE(electronRunning({"electron"}));
  EXPECT_FALSE(electronRunning({}));
}

TEST_F(ApplicationProcessTest, FlatpakIsKnownByItsIdentifier) {
  addProcess(1, "/usr/bin/xdg-dbus-proxy");
  proc.write("1/root/.flatpak-info", "[Application]\nname=org.example.diary\nruntime=x\n");
  addProcess(2, "/usr/bin/xdg-dbus-proxy");
  proc.write("2/root/.flatpak-info", "[Application]\nname=io.github.somebody.Diary\n");
  addProcess(3, "/usr/bin/xdg-dbus-proxy");
  proc.write("3/root/.flatpak-info", "[Application]\nname=org.mozilla.firefox\nname=org.example.diary\n");
  addProcess(4, "/usr/bin/xdg-dbus-proxy");
  proc.write("4/root/.flatpak-info", "garbage");
  EXPECT_TRUE(is(1));
  EXPECT_TRUE(is(2));
  EXPECT_FALSE(is(3));
  EXPECT_FALSE(is(4));
}

TEST_F(ApplicationProcessTest, PipeOrLinkInASandboxIsNeitherWaitedForNorFollowed) {
  addProcess(1, "/usr/bin/xdg-dbus-proxy");
  std::filesystem::create_directories(proc.path() / "1/root");
  ASSERT_EQ(::mkfifo((proc.path() / "1/root/.flatpak-info").c_str(), 0600), 0);
  addProcess(2, "/usr/bin/xdg-dbus-proxy");
  const auto elsewhere = proc.write("elsewhere", "name=org.example.diary\n");
  std::filesystem::create_directories(proc.path() / "2/root");
  std::filesystem::create_symlink(elsewhere, proc.path() / "2/root/.flatpak-info");
  EXPECT_FALSE(is(1));
  EXPECT_FALSE(is(2));
}

TEST_F(ApplicationProcessTest, ProcessThatIsGoneOrMayNotBeLookedAtIsNot) {
  EXPECT_FALSE(is(1));
  std::filesystem::create_directories(proc.path() / "2");
  EXPECT_FALSE(is(2));
}

TEST_F(ApplicationProcessTest, RunningIsFoundAmongAllProcesses) {
  const std::string root = proc.path().string();
  addProcess(7, "/usr/bin/bash");
  proc.write("uptime", "1 2\n");
  EXPECT_FALSE(isRunning(marks, root));
  addProcess(4242, "/opt/Diary/Diary");
  EXPECT_TRUE(isRunning(marks, root));
  EXPECT_FALSE(isRunning(marks, root + "/nowhere"));
}

TEST_F(ApplicationProcessTest, RealProcessIsKnownByItsExecutable) {
  const std::string own = std::filesystem::read_symlink("/proc/self/exe").filename();
  EXPECT_TRUE(isProcessOf({"", {own}, {}}, "/proc", getpid(), ProcessShows::windows));
  EXPECT_TRUE(isRunning({"", {own}, {}}, "/proc"));
  EXPECT_FALSE(isProcessOf(marks, "/proc", getpid(), ProcessShows::windows));
}

}  // namespace
}  // namespace nimbo
