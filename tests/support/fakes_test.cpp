// SPDX-License-Identifier: MIT
// The fakes carry other tests, so they must keep the interfaces' promises themselves.
#include <gtest/gtest.h>

#include <string>
#include <thread>

#include "platform/contracts/accessibility_contract.h"
#include "platform/contracts/host_statistics_contract.h"
#include "platform/contracts/main_loop_contract.h"
#include "platform/contracts/process_table_contract.h"
#include "platform/contracts/terminal_program_contract.h"
#include "platform/contracts/user_defaults_contract.h"
#include "platform/contracts/user_files_contract.h"
#include "support/fake_host_statistics.h"
#include "support/fake_main_loop.h"
#include "support/fake_process_table.h"
#include "support/fake_pseudo_terminals.h"
#include "support/fake_secret_files.h"
#include "support/fake_status_bar.h"
#include "support/fake_tool_files.h"
#include "support/fake_user_defaults.h"
#include "support/fake_user_interface.h"

namespace nimbo {
namespace {

using namespace std::chrono_literals;

struct FakeMachine {
  void hasMemory(std::uint64_t bytes) {
    statistics.total = bytes;
    statistics.counts = MemoryCounts{.active = bytes / 2, .fileBacked = bytes / 4};
  }
  void usesSwap(std::uint64_t bytes) { statistics.swap = bytes; }
  void hidesSwap() { statistics.swap.reset(); }
  void isPressed(MemoryPressure level) { statistics.pressure = level; }
  void hasSpent(const CpuTicks& ticks) { statistics.ticks = ticks; }
  void tellsNothing() {
    statistics.total = 0;
    statistics.counts.reset();
    statistics.ticks.reset();
  }

  FakeHostStatistics statistics;
};
INSTANTIATE_TYPED_TEST_SUITE_P(Fake, HostStatisticsContract, FakeMachine);

struct MadeUpProcesses {
  void starts(std::int32_t pid, std::uint64_t bytes, const char* name) { table.add(pid, bytes, name); }
  void ends(std::int32_t pid) { table.remove(pid); }
  void startsForbidden(std::int32_t pid) { table.addUnreadable(pid); }

  FakeProcessTable table;
};
INSTANTIATE_TYPED_TEST_SUITE_P(Fake, ProcessTableContract, MadeUpProcesses);

struct MadeUpFiles {
  [[nodiscard]] static std::filesystem::path path(const char* name) { return std::filesystem::path("/home") / name; }
  [[nodiscard]] std::filesystem::path write(const char* name, const char* text) {
    secrets.texts[path(name).string()] = text;
    return path(name);
  }
  [[nodiscard]] std::filesystem::path makeExecutable(const char* name) {
    return *tools.executables.insert(path(name)).first;
  }
  void occupy(const char* /*folder*/) { tools.state = PrivateFolder::State::occupied; }

  FakeSecretFiles secrets;
  FakeToolFiles tools;
};
INSTANTIATE_TYPED_TEST_SUITE_P(Fake, UserFilesContract, MadeUpFiles);

class MadeUpTerminals final : public terminal_contract::TerminalWorld {
 public:
  [[nodiscard]] std::unique_ptr<TerminalProgram> start(const std::string& act) override {
    if (act == "ends") terminals_.ends(0ms);
    if (act == "floods") terminals_.writes(0ms, std::string(1U << 20U, 'x'));
    return *(*terminals_.open({}))->start({});
  }

 private:
  FakeClock clock_;
  FakePseudoTerminals terminals_{clock_};
};

std::unique_ptr<terminal_contract::TerminalWorld> madeUpTerminals() { return std::make_unique<MadeUpTerminals>(); }
}  // namespace

namespace terminal_contract {
INSTANTIATE_TEST_SUITE_P(Fake, TerminalProgramContract, testing::Values(madeUpTerminals));
}  // namespace terminal_contract

namespace {

/// Passes the fake's time by the millisecond, and waits for what other threads post.
struct FakeMainLoopHost final : MainLoopHost {
  [[nodiscard]] MainLoop& loop() override { return fake; }
  [[nodiscard]] std::chrono::duration<double> uptime() const override { return passed; }
  [[nodiscard]] std::chrono::system_clock::time_point wallClock() const override { return fake.wallClock(); }
  [[nodiscard]] bool runUntil(const std::function<bool()>& done, Milliseconds longest) override {
    const auto start = passed;
    const auto end = std::chrono::steady_clock::now() + longest;
    fake.onAdvance = [this](Milliseconds step) { passed += step; };
    while (!done() && (passed - start < longest || std::chrono::steady_clock::now() < end)) {
      fake.advance(passed - start < longest ? 1ms : 0ms);
      fake.runReadable();
      std::this_thread::yield();
    }
    return done();
  }

  FakeMainLoop fake;
  Milliseconds passed{0};
};
INSTANTIATE_TEST_SUITE_P(Fake, MainLoopContract, testing::Values(makeMainLoopHost<FakeMainLoopHost>));

TEST(FakeMainLoop, PostedTasksRunInOrderIncludingThosePostedMeanwhile) {
  FakeMainLoop loop;
  std::string order;
  loop.post([&] {
    order += "a";
    loop.post([&] { order += "c"; });
  });
  loop.post([&] { order += "b"; });
  EXPECT_EQ(order, "");
  EXPECT_EQ(loop.runPosted(), 3U);
  EXPECT_EQ(order, "abc");
}

TEST(FakeMainLoop, QuitEndsRunBeforeTheRest) {
  FakeMainLoop loop;
  int ran = 0;
  loop.post([&] { loop.quit(); });
  loop.post([&] { ++ran; });
  loop.run();
  EXPECT_TRUE(loop.hasQuit());
  EXPECT_EQ(ran, 0);
}

TEST(FakeMainLoop, RepeatingTimersFireInOrderOfTimeWithOtherClocksInStep) {
  FakeMainLoop loop;
  std::chrono::milliseconds clock{0};
  std::string order;
  loop.onAdvance = [&](std::chrono::milliseconds step) { clock += step; };
  const auto slow = loop.every(5s, 1s, [&] { order += "s" + std::to_string(clock / 1s); });
  const auto fast = loop.every(2s, 250ms, [&] { order += "f" + std::to_string(clock / 1s); });
  loop.advance(6s);
  EXPECT_EQ(order, "f2f4s5f6");
  ASSERT_EQ(loop.repeatingTimers().size(), 2U);
  EXPECT_EQ(loop.repeatingTimers()[1].interval, 2s);
  EXPECT_EQ(loop.repeatingTimers()[1].leeway, 250ms);
}

TEST(FakeMainLoop, SleepMovesTheWallClockOnly) {
  FakeMainLoop loop;
  int repeated = 0;
  int once = 0;
  const auto repeating = loop.every(10s, 0ms, [&] { ++repeated; });
  const auto deadline = loop.at(loop.wallClock() + 1h, 0ms, [&] { ++once; });
  loop.sleep(59min);
  EXPECT_EQ(once, 0);
  loop.sleep(1min);
  EXPECT_EQ(once, 1);
  EXPECT_EQ(repeated, 0);
  EXPECT_TRUE(loop.wallTimers().empty());
}

TEST(FakeMainLoop, WallTimerFiresWhenTimePassesAndNotWhenTheClockIsSetBack) {
  FakeMainLoop loop;
  int fired = 0;
  const auto timer = loop.at(loop.wallClock() + 10s, 0ms, [&] { ++fired; });
  loop.setWallClock(loop.wallClock() - 1h);
  loop.advance(10s);
  EXPECT_EQ(fired, 0);
  loop.advance(1h);
  EXPECT_EQ(fired, 1);
}

TEST(FakeMainLoop, WatchesAreCalledForTheirDescriptorUntilDropped) {
  FakeMainLoop loop;
  int ready = 0;
  auto watch = loop.watch(7, [&] { ++ready; });
  loop.makeReady(7);
  loop.makeReady(8);
  EXPECT_EQ(ready, 1);
  watch.reset();
  loop.makeReady(7);
  EXPECT_EQ(ready, 1);
  EXPECT_EQ(loop.watchCount(), 0U);
}

struct FakeStore final : UserDefaultsHost {
  [[nodiscard]] UserDefaultsDomains& domains() override { return all; }
  [[nodiscard]] std::unique_ptr<UserDefaults> open(const std::string& domain) override {
    return std::make_unique<FakeUserDefaults>(all, domain);
  }

  FakeUserDefaultsDomains all;
};
INSTANTIATE_TEST_SUITE_P(Fake, UserDefaultsContract, testing::Values(makeUserDefaultsHost<FakeStore>));

struct FakeAccessibilityHost final : AccessibilityHost {
  FakeAccessibilityHost() { fake.running.clear(); }
  [[nodiscard]] Accessibility& accessibility() override { return fake; }
  void show(const std::vector<FakeElement>& windows) override {
    fake.running = "com.anthropic.claudefordesktop";
    fake.windows = windows;
  }
  void hang() override { fake.hangs = true; }
  void end() override { fake.running.clear(); }
  [[nodiscard]] std::chrono::duration<double> uptime() const override { return clock.uptime(); }

  FakeClock clock;
  FakeAccessibility fake{clock};
};
INSTANTIATE_TEST_SUITE_P(Fake, AccessibilityContract, testing::Values(makeAccessibilityHost<FakeAccessibilityHost>));

TEST(FakeStatusBar, ClicksReachTheLivingItem) {
  FakeStatusBar bar;
  bool alternate = false;
  auto item =
      bar.makeItem({"memory"}, {}, {[&](const StatusClick& click) { alternate = click.alternate; }, {}, {}, {}, {}});
  EXPECT_TRUE(bar.click("memory", {true, {}}));
  EXPECT_TRUE(alternate);
  item.reset();
  EXPECT_FALSE(bar.click("memory"));
  EXPECT_TRUE(bar.identifiers().empty());
  EXPECT_EQ(bar.all().size(), 1U);
}

TEST(FakeStatusBar, ItemMayGoAwayInItsOwnClick) {
  FakeStatusBar bar;
  std::unique_ptr<StatusItem> item;
  item = bar.makeItem({"awake"}, {}, {[&](const StatusClick&) { item.reset(); }, {}, {}, {}, {}});
  EXPECT_TRUE(bar.click("awake"));
  EXPECT_EQ(bar.item("awake"), nullptr);
}

TEST(FakeStatusBar, MenuOpensAndChoosingClosesItFirst) {
  FakeStatusBar bar;
  std::string order;
  StatusItemHandlers handlers;
  handlers.menuWillOpen = [&] {
    order += "open ";
    MenuEntry quit;
    quit.title = "Quit Nimbo";
    quit.action = [&] { order += "quit"; };
    MenuEntry disabled;
    disabled.title = "Off";
    disabled.enabled = false;
    disabled.action = [&] { order += "wrong"; };
    return StatusMenu{"Nimbo", {quit, disabled}};
  };
  handlers.menuDidClose = [&] { order += "closed "; };
  const auto item = bar.makeItem({"memory"}, {}, handlers);
  EXPECT_TRUE(bar.choose("memory", "Quit Nimbo"));
  EXPECT_EQ(order, "open closed quit");
  EXPECT_FALSE(bar.choose("memory", "Off"));
  EXPECT_FALSE(bar.choose("memory", "Missing"));
}

TEST(FakeStatusBar, PreviewOpensNothing) {
  FakeStatusBar bar;
  int opened = 0;
  StatusItemHandlers handlers;
  handlers.menuWillOpen = [&] {
    ++opened;
    return StatusMenu{"opened", {}};
  };
  handlers.menuPreview = [] { return StatusMenu{"preview", {}}; };
  const auto item = bar.makeItem({"memory"}, {}, handlers);
  EXPECT_EQ(bar.previewMenu("memory").title, "preview");
  EXPECT_EQ(opened, 0);
}

TEST(FakeStatusBar, OnlyRealChangesOfContentAreCounted) {
  FakeStatusBar bar;
  const auto item = bar.makeItem({"memory"}, {}, {});
  StatusItemContent content;
  content.title = "70%";
  item->setContent(content);
  item->setContent(content);
  EXPECT_EQ(bar.item("memory")->contentChanges, 1);
  EXPECT_EQ(bar.item("memory")->content, content);
}

TEST(FakeUserInterface, HiddenWindowReportsNothing) {
  FakeUserInterface interface;
  const auto window = interface.makeDashboardWindow();
  int keys = 0;
  window->setEvents({.acted = {}, .closed = [&](ClosedBy /*by*/) { ++keys; }});
  ASSERT_EQ(interface.windows().size(), 1U);
  FakeMenuWindow& fake = *interface.windows()[0];
  fake.pressEscape();
  EXPECT_EQ(keys, 0);
  window->show({});
  fake.pressEscape();
  EXPECT_EQ(keys, 1);
}

TEST(FakeUserInterface, AlertIsAnsweredOnceAndMayGoAwayInItsAnswer) {
  FakeUserInterface interface;
  std::unique_ptr<Alert> alert;
  std::vector<std::size_t> answers;
  alert = interface.showAlert({"Title", "Text", {"Stay", "Go"}}, [&](std::optional<std::size_t> button) {
    answers.push_back(button.value());
    alert.reset();
  });
  ASSERT_EQ(interface.openAlerts().size(), 1U);
  FakeAlert& fake = *interface.openAlerts()[0];
  alert->present();
  EXPECT_EQ(fake.content().title, "Title");
  EXPECT_EQ(fake.presents(), 1);
  EXPECT_FALSE(fake.answer(2)) << "no such button";
  EXPECT_TRUE(fake.answer(1));
  EXPECT_FALSE(fake.close());
  EXPECT_EQ(answers, std::vector<std::size_t>{1});
  EXPECT_FALSE(fake.up());
  EXPECT_TRUE(interface.openAlerts().empty());
  EXPECT_EQ(interface.alerts().size(), 1U);
}

TEST(FakeUserInterface, AlertTakenAwayIsNeverAnswered) {
  FakeUserInterface interface;
  int answers = 0;
  auto alert =
      interface.showAlert({"Title", "Text", {"Stay", "Go"}}, [&](std::optional<std::size_t> /*button*/) { ++answers; });
  alert.reset();
  EXPECT_FALSE(interface.alerts()[0]->close());
  EXPECT_EQ(answers, 0);
}

}  // namespace
}  // namespace nimbo
