// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>

#include <cerrno>
#include <thread>

#include "platform/darwin/display/pmset_display_power.h"
#include "support/fake_main_loop.h"
#include "support/services/temporary_tree.h"

namespace nimbo {
namespace {

/// With a script in the tool's place, which may write into its folder.
class PmsetDisplayPowerTest : public testing::Test {
 protected:
  Result<Subscription, DisplayPowerError> sleepNow(const std::string& script) {
    const auto tool = tree.write("pmset", "#!/bin/sh\ncd " + tree.path().string() + "\n" + script);
    std::filesystem::permissions(tool, std::filesystem::perms::owner_all);
    return power.sleepNow([this] { ++failures; });
  }

  void runUntil(const std::function<bool()>& isSo) {
    const auto bound = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!isSo()) {
      ASSERT_LT(std::chrono::steady_clock::now(), bound);
      loop.advance(std::chrono::milliseconds(50));
      std::this_thread::yield();
    }
  }
  /// Nothing is looked at any more, and no child is left.
  void runToEnd() {
    runUntil([this] { return loop.repeatingTimers().empty(); });
    EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
  }

  TemporaryTree tree;
  FakeMainLoop loop;
  PmsetDisplayPower power{loop, (tree.path() / "pmset").string()};
  int failures = 0;
};

TEST_F(PmsetDisplayPowerTest, ToolIsAskedToPutTheDisplayToSleep) {
  const auto request = sleepNow("echo \"$#:$*\" >asked");
  ASSERT_TRUE(request);
  runToEnd();
  EXPECT_EQ(tree.read("asked"), "1:displaysleepnow\n");
  EXPECT_EQ(failures, 0);
}

TEST_F(PmsetDisplayPowerTest, ToolHasNothingOfThisProcess) {
  ::setenv("NIMBO_TEST_VARIABLE", "x", 1);
  const auto request = sleepNow(
      "streams=$(readlink /proc/$$/fd/0 /proc/$$/fd/1 /proc/$$/fd/2)\n"
      "echo \"$NIMBO_TEST_VARIABLE$streams\" >has");
  ::unsetenv("NIMBO_TEST_VARIABLE");
  runToEnd();
  EXPECT_EQ(tree.read("has"), "/dev/null\n/dev/null\n/dev/null\n");
}

TEST_F(PmsetDisplayPowerTest, RefusalIsToldOnce) {
  for (const char* script : {"exit 3", "kill -9 $$"}) {
    const auto request = sleepNow(script);
    runToEnd();
    EXPECT_EQ(std::exchange(failures, 0), 1) << script;
  }
}

TEST_F(PmsetDisplayPowerTest, MissingToolIsAnErrorThatSaysSo) {
  const auto request = power.sleepNow([this] { ++failures; });
  ASSERT_FALSE(request);
  EXPECT_EQ(request.error().description, "No such file or directory.");
  EXPECT_TRUE(loop.repeatingTimers().empty());
}

TEST_F(PmsetDisplayPowerTest, RequestThatIsTakenBackEndsTheToolAndTellsNothing) {
  {
    const auto request = sleepNow("echo >begun; while :; do sleep 100; done");
    runUntil([this] { return !tree.read("begun").empty(); });
  }
  runToEnd();
  EXPECT_EQ(failures, 0);
}

TEST_F(PmsetDisplayPowerTest, EachOfTwoRequestsHasItsOwnEnd) {
  const auto one = sleepNow("mkdir first 2>/dev/null && exit 1; exit 0");
  const auto other = power.sleepNow([this] { ++failures; });
  runToEnd();
  EXPECT_EQ(failures, 1);
}

}  // namespace
}  // namespace nimbo
