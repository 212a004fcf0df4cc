// SPDX-License-Identifier: MIT
// The real program of the windows, without a screen, at the other end of a real channel.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/clock.h"
#include "platform/linux/loop/sd_event_main_loop.h"
#include "platform/linux/windows/record_socket.h"
#include "platform/linux/windows/windows_launcher.h"
#include "support/fake_workspace.h"
#include "ui/remote/remote_user_interface.h"

namespace nimbo {
namespace {

using namespace std::chrono_literals;
using Condition = std::function<bool()>;

class WindowsProgramTest : public testing::Test {
 protected:
  WindowsProgramTest() { setenv("QT_QPA_PLATFORM", "offscreen", 1); }

  [[nodiscard]] bool turnUntil(const Condition& done) {
    bool late = false;
    const auto deadline = loop.every(30s, 1ms, [&] {
      late = true;
      loop.quit();
    });
    const auto look = loop.every(5ms, 0ms, [&] {
      if (done()) loop.quit();
    });
    if (!done()) loop.run();
    return !late;
  }
  std::unique_ptr<WindowsProcess> start(WindowsLauncher& from) {
    return from.start(DisplayNeed::required,
                      {.received = [this](const std::string& record) { records.push_back(record); },
                       .ended = [this](WindowsEnd how) { end = how; }});
  }
  [[nodiscard]] bool ready() {
    return turnUntil([this] { return !records.empty() || end; }) && !records.empty();
  }

  SdEventMainLoop loop;
  WindowsLauncher launcher{loop, NIMBO_WINDOWS};
  std::vector<std::string> records;
  std::optional<WindowsEnd> end;
};

TEST_F(WindowsProgramTest, SaysFirstWhatItUnderstands) {
  const auto process = start(launcher);
  ASSERT_TRUE(ready());
  const auto record = decodeFromWindows(records.front());
  ASSERT_TRUE(record && std::holds_alternative<WindowsReady>(*record));
  EXPECT_EQ(std::get<WindowsReady>(*record).version, kRecordVersion);
}

TEST_F(WindowsProgramTest, ShowsWhatItIsSentAndReadsItBeforeItIsReady) {
  const auto process = start(launcher);
  EXPECT_TRUE(process->send(encode(Show<DashboardContent>{})));
  EXPECT_TRUE(process->send(encode(Open{WindowName::dashboard, 7})));
  EXPECT_TRUE(process->send(encode(Open{WindowName::settings, 8})));
  EXPECT_TRUE(process->send(encode(Close{WindowName::settings})));
  const auto told = [this](const std::string& what) { return std::ranges::find(records, what) != records.end(); };
  EXPECT_TRUE(turnUntil([&] { return told(encode(Closed{WindowName::settings, 8})); }));
}

TEST_F(WindowsProgramTest, NonsenseEndsIt) {
  const auto process = start(launcher);
  ASSERT_TRUE(ready());
  EXPECT_TRUE(process->send("[42]"));
  EXPECT_TRUE(turnUntil([this] { return end.has_value(); }));
  EXPECT_EQ(end, WindowsEnd::died);
}

TEST_F(WindowsProgramTest, DeathIsToldAndLeavesNoZombie) {
  const auto process = start(launcher);
  ASSERT_TRUE(ready());
  const pid_t pid = launcher.process().value();
  ASSERT_EQ(::kill(pid, SIGKILL), 0);
  siginfo_t ended{};
  ASSERT_EQ(::waitid(P_PID, static_cast<id_t>(pid), &ended, WEXITED | WNOWAIT), 0);
  EXPECT_TRUE(process->send("into the void")) << "its end is about to be told";
  EXPECT_TRUE(turnUntil([this] { return end.has_value(); }));
  EXPECT_EQ(end, WindowsEnd::died);
  EXPECT_EQ(::waitpid(pid, nullptr, WNOHANG), -1);
  EXPECT_EQ(errno, ECHILD);
  EXPECT_TRUE(process->send("into the void")) << "its end has been told";
}

TEST_F(WindowsProgramTest, ProcessThatIsLetGoEnds) {
  auto process = start(launcher);
  ASSERT_TRUE(ready());
  const pid_t pid = launcher.process().value();
  process.reset();
  EXPECT_FALSE(launcher.process());
  EXPECT_TRUE(turnUntil([pid] { return ::kill(pid, 0) != 0; }));
  EXPECT_FALSE(end) << "nobody is told who has let go";
}

TEST_F(WindowsProgramTest, ProcessThatHangsIsEndedToo) {
  auto process = start(launcher);
  ASSERT_TRUE(ready());
  const pid_t pid = launcher.process().value();
  ASSERT_EQ(::kill(pid, SIGSTOP), 0);
  process.reset();
  EXPECT_TRUE(turnUntil([pid] { return ::kill(pid, 0) != 0; }));
}

TEST_F(WindowsProgramTest, ProcessThatDoesNotReadIsNoticed) {
  const auto process = start(launcher);
  ASSERT_TRUE(ready());
  ASSERT_EQ(::kill(launcher.process().value(), SIGSTOP), 0);
  const std::string record(1000, ' ');
  int sent = 0;
  while (process->send(record) && sent < 10000) ++sent;
  EXPECT_GT(sent, 50);
  EXPECT_LT(sent, 10000);
}

TEST_F(WindowsProgramTest, MissingDisplayIsNoFault) {
  unsetenv("QT_QPA_PLATFORM");
  const auto display = std::getenv("DISPLAY") ? std::optional<std::string>(std::getenv("DISPLAY")) : std::nullopt;
  unsetenv("DISPLAY");
  unsetenv("WAYLAND_DISPLAY");
  const auto process = start(launcher);
  EXPECT_TRUE(turnUntil([this] { return end.has_value(); }));
  EXPECT_EQ(end, WindowsEnd::noDisplay);
  EXPECT_TRUE(records.empty());
  if (display) setenv("DISPLAY", display->c_str(), 1);
}

TEST_F(WindowsProgramTest, MissingProgramIsNoFault) {
  WindowsLauncher nowhere(loop, "/nonexistent/nimbo-windows");
  const auto process = start(nowhere);
  EXPECT_FALSE(end) << "not from within";
  EXPECT_TRUE(turnUntil([this] { return end.has_value(); }));
  EXPECT_EQ(end, WindowsEnd::cannotRun);
}

TEST_F(WindowsProgramTest, WindowsComeBackWhenItWasKilled) {
  FakeWorkspace workspace;
  const SystemClock clock;
  RemoteUserInterface interface({loop, clock, workspace}, [this](DisplayNeed need, WindowsProcess::Events events) {
    return launcher.start(need, std::move(events));
  });
  const auto settings = interface.makeSettingsWindow();
  int keys = 0;
  settings->setEvents({.becameKey = [&] { ++keys; }});
  settings->render({.title = "Settings", .size = {400, 300}, .tabs = {}, .pages = {}});
  settings->show({});
  ASSERT_TRUE(turnUntil([&] { return keys == 1; }));
  const pid_t first = launcher.process().value();
  ASSERT_EQ(::kill(first, SIGKILL), 0);
  EXPECT_TRUE(turnUntil([&] { return keys == 2; }));
  EXPECT_NE(launcher.process().value(), first);
  EXPECT_TRUE(settings->visible());
}

TEST(RecordSocket, KeepsRecordsWholeAndInOrder) {
  auto [one, other] = makeRecordChannel();
  const RecordSocket sender(std::move(one));
  const RecordSocket receiver(std::move(other));
  std::string record;
  EXPECT_EQ(receiver.receive(record), RecordSocket::Received::nothing);
  const std::string large(200'000, 'x');
  EXPECT_TRUE(sender.send("first"));
  EXPECT_TRUE(sender.send(large));
  EXPECT_EQ(receiver.receive(record), RecordSocket::Received::record);
  EXPECT_EQ(record, "first");
  EXPECT_EQ(receiver.receive(record), RecordSocket::Received::record);
  EXPECT_EQ(record, large);
  EXPECT_EQ(receiver.receive(record), RecordSocket::Received::nothing);
}

TEST(RecordSocket, KnowsWhenTheOtherEndIsClosed) {
  auto [one, other] = makeRecordChannel();
  const RecordSocket left(std::move(one));
  EXPECT_TRUE(left.send("x"));
  {
    const RecordSocket right(std::move(other));
    EXPECT_TRUE(right.send("last words"));
  }
  EXPECT_FALSE(left.send("nobody hears"));
  std::string record;
  EXPECT_EQ(left.receive(record), RecordSocket::Received::record);
  EXPECT_EQ(left.receive(record), RecordSocket::Received::ended);
}

}  // namespace
}  // namespace nimbo
