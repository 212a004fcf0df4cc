// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <cerrno>
#include <filesystem>

#include "platform/linux/desktop/desktop_programs.h"
#include "platform/posix/files/unique_fd.h"
#include "support/services/bus_peer.h"
#include "support/services/temporary_tree.h"

namespace nimbo {
namespace {

std::string writeProgram(const TemporaryTree& tree, const std::string& relative, const std::string& script) {
  const auto path = tree.write(relative, "#!/bin/sh\n" + script);
  std::filesystem::permissions(path, std::filesystem::perms::owner_all);
  return path.string();
}

TEST(DesktopName, IsFoundAmongSeveralInAnyCase) {
  EXPECT_TRUE(desktopIs("GNOME", "GNOME"));
  EXPECT_TRUE(desktopIs("ubuntu:GNOME", "GNOME"));
  EXPECT_TRUE(desktopIs("Budgie:GNOME:", "gnome"));
  EXPECT_FALSE(desktopIs("GNOMEish", "GNOME"));
  EXPECT_FALSE(desktopIs("", "GNOME"));
  EXPECT_FALSE(desktopIs("XFCE", "GNOME"));
}

TEST(FindProgram, TakesTheFirstFolderThatHasIt) {
  const TemporaryTree tree;
  writeProgram(tree, "one/other", "");
  const std::string wanted = writeProgram(tree, "two/monitor", "");
  writeProgram(tree, "three/monitor", "");
  const std::string folder = tree.path().string();
  EXPECT_EQ(findProgram("monitor", folder + "/one::relative:" + folder + "/two:" + folder + "/three"), wanted);
  EXPECT_EQ(findProgram("monitor", folder + "/one"), std::nullopt);
  EXPECT_EQ(findProgram("monitor", ""), std::nullopt);
}

TEST(FindProgram, SkipsFoldersAndFilesThatCannotRun) {
  const TemporaryTree tree;
  tree.write("plain/monitor", "text");
  std::filesystem::create_directories(tree.path() / "folder" / "monitor");
  const std::string folder = tree.path().string();
  EXPECT_EQ(findProgram("monitor", folder + "/plain:" + folder + "/folder"), std::nullopt);
}

TEST(DetachedPrograms, ProgramThatEndsIsReaped) {
  BusLoop loop;
  const TemporaryTree tree;
  const std::string program = writeProgram(tree, "monitor", "echo done > \"" + tree.path().string() + "/ran\"\n");
  DetachedPrograms programs(loop.main());
  ASSERT_TRUE(programs.start({program}));
  // No child is left, and not even a dead one, when wait has nothing to wait for.
  const auto childless = [] {
    siginfo_t child{};
    return ::waitid(P_ALL, 0, &child, WEXITED | WNOHANG | WNOWAIT) < 0 && errno == ECHILD;
  };
  EXPECT_TRUE(loop.runUntil([&] { return !tree.read("ran").empty() && childless(); }));
}

TEST(DetachedPrograms, ProgramRunsInASessionOfItsOwnWithNoSignalBlocked) {
  BusLoop loop;
  const TemporaryTree tree;
  sigset_t set;
  sigset_t before;
  sigemptyset(&set);
  sigaddset(&set, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &set, &before);
  const std::string program =
      writeProgram(tree, "monitor",
                   "cd \"" + tree.path().string() +
                       "\"; { cut -d' ' -f1,6 /proc/$$/stat; grep SigBlk /proc/self/status; } > a\n"
                       "mv a out\n");
  DetachedPrograms programs(loop.main());
  ASSERT_TRUE(programs.start({program}));
  ASSERT_TRUE(loop.runUntil([&] { return !tree.read("out").empty(); }));
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  const std::string out = tree.read("out");
  const std::string pid = out.substr(0, out.find(' '));
  EXPECT_EQ(out, pid + " " + pid + "\nSigBlk:\t0000000000000000\n");
}

TEST(DetachedPrograms, ProgramInheritsNoDescriptorThatALibraryLeftOpen) {
  BusLoop loop;
  const TemporaryTree tree;
  const UniqueFd leaked(::fcntl(STDERR_FILENO, F_DUPFD, 50));  // without close-on-exec
  const std::string program =
      writeProgram(tree, "monitor",
                   "cd \"" + tree.path().string() + "\"; test -e /proc/$$/fd/" + std::to_string(leaked.get()) +
                       " && echo open > a || echo closed > a; mv a out\n");
  DetachedPrograms programs(loop.main());
  ASSERT_TRUE(programs.start({program}));
  ASSERT_TRUE(loop.runUntil([&] { return !tree.read("out").empty(); }));
  EXPECT_EQ(tree.read("out"), "closed\n");
}

TEST(DetachedPrograms, ProgramThatIsNotThereIsNotStarted) {
  BusLoop loop;
  DetachedPrograms programs(loop.main());
  EXPECT_FALSE(programs.start({"/nonexistent/monitor"}));
}

}  // namespace
}  // namespace nimbo
