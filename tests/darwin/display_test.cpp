// SPDX-License-Identifier: MIT
#include <signal.h>
#include <sys/wait.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <optional>
#include <thread>

#include "platform/contracts/display_power_contract.h"
#include "platform/darwin/display/pmset_display_power.h"
#include "support/fake_main_loop.h"
#include "support/services/temporary_tree.h"

namespace nimbo {
namespace {

/// With a script in the tool's place, which may write into its folder.
struct PmsetHost final : DisplayPowerHost {
  PmsetHost() { setTool("while [ ! -e go ]; do sleep 0.01; done; echo >>dark"); }
  [[nodiscard]] DisplayPower& power() override { return *pmset; }
  void destroyPower() override { pmset.reset(); }
  void refuse() override { setTool("while [ ! -e go ]; do sleep 0.01; done; exit 3"); }
  void offerNothing() override { std::filesystem::remove(tool); }
  /// Nothing is looked at any more, and no child is left.
  void settle() override {
    tree.write("go", "");
    const auto bound = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!loop.repeatingTimers().empty()) {
      ASSERT_LT(std::chrono::steady_clock::now(), bound);
      loop.advance(std::chrono::milliseconds(50));
      std::this_thread::yield();
    }
    if (!pmset) ::waitpid(-1, nullptr, 0);  // which is now left to the end of the process
    EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
  }
  [[nodiscard]] int timesDark() const override {
    const std::string dark = tree.read("dark");
    return static_cast<int>(std::count(dark.begin(), dark.end(), '\n'));
  }

  void setTool(const std::string& script) const {
    tree.write("pmset", "#!/bin/sh\ncd " + tree.path().string() + "\n" + script);
    std::filesystem::permissions(tool, std::filesystem::perms::owner_all);
  }

  TemporaryTree tree;
  const std::filesystem::path tool = tree.path() / "pmset";
  FakeMainLoop loop;
  std::optional<PmsetDisplayPower> pmset{std::in_place, loop, tool.string()};
};
const auto kPmset = testing::Values(makeDisplayPowerHost<PmsetHost>);
INSTANTIATE_TEST_SUITE_P(Pmset, DisplayPowerContract, kPmset);
INSTANTIATE_TEST_SUITE_P(Pmset, WaitingDisplayPowerContract, kPmset);

class PmsetDisplayPowerTest : public testing::Test {
 protected:
  [[nodiscard]] auto sleepNow(const std::string& script) {
    host.setTool(script);
    return host.pmset->sleepNow([this] { ++failures; });
  }

  PmsetHost host;
  TemporaryTree& tree = host.tree;
  int failures = 0;
};

TEST_F(PmsetDisplayPowerTest, ToolIsAskedToPutTheDisplayToSleep) {
  const auto request = sleepNow("echo \"$#:$*\" >asked");
  host.settle();
  EXPECT_EQ(tree.read("asked"), "1:displaysleepnow\n");
}

TEST_F(PmsetDisplayPowerTest, ToolHasNothingOfThisProcess) {
  ::setenv("NIMBO_TEST_VARIABLE", "x", 1);
  const auto request = sleepNow(
      "streams=$(readlink /proc/$$/fd/0 /proc/$$/fd/1 /proc/$$/fd/2)\n"
      "echo \"$NIMBO_TEST_VARIABLE$streams\" >has");
  ::unsetenv("NIMBO_TEST_VARIABLE");
  host.settle();
  EXPECT_EQ(tree.read("has"), "/dev/null\n/dev/null\n/dev/null\n");
}

TEST_F(PmsetDisplayPowerTest, ToolThatIsKilledHasFailed) {
  const auto request = sleepNow("kill -9 $$");
  host.settle();
  EXPECT_EQ(failures, 1);
}

TEST_F(PmsetDisplayPowerTest, MissingToolIsAnErrorThatSaysSo) {
  host.offerNothing();
  const auto request = host.pmset->sleepNow([] {});
  ASSERT_FALSE(request);
  EXPECT_EQ(request.error().description, "No such file or directory.");
  EXPECT_TRUE(host.loop.repeatingTimers().empty());
}

TEST_F(PmsetDisplayPowerTest, EachOfTwoRequestsHasItsOwnEnd) {
  const auto one = sleepNow("mkdir first 2>/dev/null && exit 1; exit 0");
  const auto other = host.pmset->sleepNow([this] { ++failures; });
  host.settle();
  EXPECT_EQ(failures, 1);
}

}  // namespace
}  // namespace nimbo
