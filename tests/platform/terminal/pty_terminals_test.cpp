// SPDX-License-Identifier: MIT
#include "platform/posix/terminal/pty_terminals.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "platform/linux/terminal/session_processes.h"
#include "platform/posix/files/unique_fd.h"
#include "support/services/temporary_tree.h"

namespace nimbo {
namespace {

namespace fs = std::filesystem;

using std::chrono::milliseconds;
using std::chrono::seconds;
using Input = TerminalProgram::Input;
using SteadyClock = std::chrono::steady_clock;

constexpr seconds kBound{20};
constexpr milliseconds kPatience{500};

std::ptrdiff_t openDescriptors() {
  return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
}

bool hasChildren() {
  siginfo_t child{};
  return ::waitid(P_ALL, 0, &child, WEXITED | WNOHANG | WNOWAIT) == 0;
}

/// Gone, or dead and waiting for somebody else to reap it.
bool isGone(const std::string& pid) {
  std::ifstream file("/proc/" + pid + "/stat");
  const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  return text.empty() || text.find(") Z ") != std::string::npos;
}

class PtyTerminalsTest : public ::testing::Test {
 protected:
  [[nodiscard]] ChildProgram tool(const std::string& act) const {
    return {.executable = NIMBO_TERMINAL_TOOL,
            .arguments = {},
            .environment = {"TOOL_ACT=" + act, "TOOL_NOTES=" + notes()},
            .folder = folder.path()};
  }

  [[nodiscard]] std::string notes() const { return elsewhere.path() / "notes"; }

  void start(const std::string& act) { start(tool(act)); }
  void start(const ChildProgram& child) {
    auto started = startAnother(child);
    ASSERT_TRUE(started) << started.error().message();
    program = std::move(*started);
  }
  auto startAnother(const ChildProgram& child) -> Result<std::unique_ptr<TerminalProgram>, std::error_code> {
    const auto terminal = terminals.open({.columns = 160, .rows = 80});
    if (!terminal) return tl::unexpected(terminal.error());
    return (*terminal)->start(child);
  }

  /// Reads until `text` was seen; false when it never came.
  bool readUntil(const std::string& text) {
    const auto deadline = SteadyClock::now() + kBound;
    while (output.find(text) == std::string::npos) {
      if (SteadyClock::now() > deadline || program->read(output, milliseconds{100}) == Input::ended) break;
    }
    return output.find(text) != std::string::npos;
  }

  /// Reads to the end; false when it does not come.
  bool readToEnd() {
    const auto deadline = SteadyClock::now() + kBound;
    while (SteadyClock::now() < deadline) {
      if (program->read(output, milliseconds{100}) == Input::ended) return true;
    }
    return false;
  }

  [[nodiscard]] bool reports(const std::string& line) const {
    return output.find("\n" + line + "\r\n") != std::string::npos;
  }

  TemporaryTree folder;
  TemporaryTree elsewhere;
  PtyTerminals terminals{procfsTerminalSystem()};
  std::unique_ptr<TerminalProgram> program;
  std::string output;
};

TEST_F(PtyTerminalsTest, ProgramGetsExactlyItsArgumentsVariablesAndFolder) {
  ChildProgram child = tool("reports");
  child.arguments = {"--first", "", "a b"};
  start(child);
  ASSERT_TRUE(readUntil("end of report"));
  EXPECT_TRUE(
      output.starts_with("argument:--first\r\nargument:\r\nargument:a b\r\nvariable:TOOL_ACT=reports\r\n"
                         "variable:TOOL_NOTES=" +
                         notes() + "\r\nfolder:"))
      << output;
  EXPECT_TRUE(reports("folder:" + fs::canonical(folder.path()).string())) << output;
}

TEST_F(PtyTerminalsTest, TerminalHasTheSizeAndControlsTheProgramsOwnSession) {
  start("reports");
  ASSERT_TRUE(readUntil("end of report"));
  for (const char* line :
       {"columns=160", "rows=80", "pixels=0", "terminals=3", "leads session=1", "controls terminal=1"}) {
    EXPECT_TRUE(reports(line)) << line << " is not in:\n" << output;
  }
}

TEST_F(PtyTerminalsTest, DescriptorsAndSignalSettingsStayHere) {
  const UniqueFd leaky(::open("/dev/null", O_RDONLY));  // not close-on-exec
  ASSERT_EQ(::fcntl(leaky.get(), F_GETFD), 0);
  sigset_t blocked;
  sigset_t before;
  ::sigfillset(&blocked);
  ::pthread_sigmask(SIG_SETMASK, &blocked, &before);
  const auto handler = ::signal(SIGPIPE, SIG_IGN);
  start("reports");
  ::signal(SIGPIPE, handler);
  ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
  ASSERT_TRUE(readUntil("end of report"));
  EXPECT_TRUE(reports("descriptors=3")) << output;
  EXPECT_TRUE(reports("signals=0")) << output;
}

TEST_F(PtyTerminalsTest, WhatIsWrittenIsTypedIn) {
  start("echoes");
  ASSERT_TRUE(readUntil("ready"));
  EXPECT_TRUE(program->write("y\r"));
  EXPECT_TRUE(readUntil("heard:y\r\n")) << output;
  EXPECT_TRUE(program->running());
}

TEST_F(PtyTerminalsTest, WritingToAProgramThatDoesNotReadEndsUnfinished) {
  start("says nothing");
  EXPECT_FALSE(program->write(std::string(1 << 20, 'x')));
}

TEST_F(PtyTerminalsTest, SilentProgramIsWaitedForNoLongerThanPatience) {
  start("says nothing");
  const auto begin = SteadyClock::now();
  EXPECT_EQ(program->read(output, milliseconds{50}), Input::nothing);
  const auto waited = SteadyClock::now() - begin;
  EXPECT_GE(waited, milliseconds{49});
  EXPECT_LT(waited, seconds{2});
  EXPECT_EQ(program->read(output, milliseconds{0}), Input::nothing);
  EXPECT_TRUE(output.empty());
}

TEST_F(PtyTerminalsTest, EverythingWrittenBeforeTheProgramEndedIsRead) {
  start("floods and ends");
  ASSERT_TRUE(readToEnd());
  EXPECT_EQ(std::count(output.begin(), output.end(), '\n'), 20000);
  EXPECT_TRUE(output.ends_with("\n19999\r\n"));
}

TEST_F(PtyTerminalsTest, OneReadGivesAtMostEightKilobytes) {
  start("floods");
  for (int i = 0; i < 100; ++i) {
    const std::size_t before = output.size();
    ASSERT_NE(program->read(output, kBound), Input::ended);
    EXPECT_LE(output.size() - before, 8192U);
  }
}

TEST_F(PtyTerminalsTest, ProgramThatEndsAtOnceIsSeenToHaveEnded) {
  start("ends");
  EXPECT_TRUE(readToEnd());
  EXPECT_TRUE(output.empty()) << output;
  const auto deadline = SteadyClock::now() + kBound;
  while (program->running() && SteadyClock::now() < deadline) (void)program->read(output, milliseconds{1});
  EXPECT_FALSE(program->running());
}

TEST_F(PtyTerminalsTest, PoliteProgramEndsAtOnceWhenStopped) {
  start("says nothing");
  const auto begin = SteadyClock::now();
  program->stop(kBound);
  EXPECT_LT(SteadyClock::now() - begin, seconds{5});
  EXPECT_FALSE(program->running());
  EXPECT_FALSE(hasChildren());
}

TEST_F(PtyTerminalsTest, LongGoodbyeOnTheTerminalIsHeardOut) {
  start("says goodbye");
  ASSERT_TRUE(readUntil("ready"));
  program->stop(kBound);
  EXPECT_EQ(elsewhere.read("notes"), "goodbye\n");
}

TEST_F(PtyTerminalsTest, ProgramThatIgnoresTerminationIsKilledAfterPatience) {
  start("ignores all");
  ASSERT_TRUE(readUntil("Current week"));
  const auto begin = SteadyClock::now();
  program->stop(kPatience);
  const auto took = SteadyClock::now() - begin;
  EXPECT_GE(took, kPatience);
  EXPECT_LT(took, kPatience + seconds{2});
  EXPECT_FALSE(program->running());
  EXPECT_FALSE(hasChildren());
}

TEST_F(PtyTerminalsTest, StoppingTwiceDoesNothingMore) {
  start("says nothing");
  program->stop(kPatience);
  program->stop(kPatience);
  EXPECT_FALSE(program->running());
}

TEST_F(PtyTerminalsTest, StoppedProgramHasEndedTheTerminal) {
  start("says nothing");
  program->stop(kPatience);
  EXPECT_EQ(program->read(output, seconds{1}), Input::ended);
}

TEST_F(PtyTerminalsTest, DestroyingAProgramLeavesNothing) {
  const auto descriptors = openDescriptors();
  start("ignores all");
  ASSERT_TRUE(readUntil("Current week"));
  program.reset();
  EXPECT_EQ(openDescriptors(), descriptors);
  EXPECT_FALSE(hasChildren());
}

class ProgramThatLeavesAProcess : public PtyTerminalsTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(ProgramThatLeavesAProcess, ReadingIsNotHeldUpAndStoppingEndsTheProcessToo) {
  start(GetParam());
  ASSERT_TRUE(readUntil("Current week")) << output;
  std::string pid = elsewhere.read("notes");
  pid.pop_back();
  const auto deadline = SteadyClock::now() + kBound;
  while (program->running() && SteadyClock::now() < deadline) (void)program->read(output, milliseconds{10});
  ASSERT_FALSE(program->running());
  while (program->read(output, milliseconds{0}) == Input::some) {
  }
  const auto begin = SteadyClock::now();
  EXPECT_EQ(program->read(output, milliseconds{50}), Input::nothing);
  EXPECT_LT(SteadyClock::now() - begin, seconds{2});
  ASSERT_FALSE(isGone(pid));
  program->stop(kPatience);
  EXPECT_TRUE(isGone(pid));
  EXPECT_EQ(program->read(output, seconds{1}), Input::ended);
}

INSTANTIATE_TEST_SUITE_P(PtyTerminals, ProgramThatLeavesAProcess,
                         ::testing::Values("leaves a child", "leaves a job", "leaves a daemon"));

TEST_F(PtyTerminalsTest, ChildOfAProgramThatRunsEndsWithIt) {
  start("keeps a child");
  ASSERT_TRUE(readUntil("Current week"));
  std::string pid = elsewhere.read("notes");
  pid.pop_back();
  ASSERT_FALSE(isGone(pid));
  program.reset();
  EXPECT_TRUE(isGone(pid));
}

TEST_F(PtyTerminalsTest, AnotherProgramsSessionIsLeftAlone) {
  start("echoes");
  ASSERT_TRUE(readUntil("ready"));
  auto other = startAnother(tool("leaves a daemon"));
  ASSERT_TRUE(other);
  (*other)->stop(kPatience);
  EXPECT_TRUE(program->write("still here\r"));
  EXPECT_TRUE(readUntil("heard:still here"));
}

TEST_F(PtyTerminalsTest, MissingExecutableIsNotStartedAndLeavesNothing) {
  const auto descriptors = openDescriptors();
  ChildProgram child = tool("ends");
  child.executable = elsewhere.path() / "missing";
  const auto started = startAnother(child);
  ASSERT_FALSE(started);
  EXPECT_EQ(started.error(), std::errc::no_such_file_or_directory);
  EXPECT_EQ(openDescriptors(), descriptors);
  EXPECT_FALSE(hasChildren());
}

TEST_F(PtyTerminalsTest, FileThatIsNoProgramIsNotStarted) {
  ChildProgram child = tool("ends");
  child.executable = elsewhere.write("text", "not a program");
  fs::permissions(child.executable, fs::perms::owner_all);
  const auto started = startAnother(child);
  ASSERT_FALSE(started);
  EXPECT_EQ(started.error(), std::errc::executable_format_error);
}

TEST_F(PtyTerminalsTest, MissingFolderKeepsTheProgramFromStarting) {
  ChildProgram child = tool("ends");
  child.folder = folder.path() / "missing";
  const auto started = startAnother(child);
  ASSERT_FALSE(started);
  EXPECT_EQ(started.error(), std::errc::no_such_file_or_directory);
}

TEST_F(PtyTerminalsTest, NoDescriptorLeftMeansNoTerminal) {
  // Once before, because the sanitizer's first look at an object takes a descriptor.
  PseudoTerminals& used = terminals;
  ASSERT_TRUE(used.open({}));
  rlimit before{};
  ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
  rlimit none = before;
  none.rlim_cur = 3;
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
  const auto terminal = used.open({});
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &before), 0);
  ASSERT_FALSE(terminal);
  EXPECT_EQ(terminal.error(), std::errc::too_many_files_open);
}

TEST_F(PtyTerminalsTest, TwoHundredProgramsOnFourThreadsLeaveNothing) {
  const auto descriptors = openDescriptors();
  const auto some = [this](const char* act) {
    for (int i = 0; i < 50; ++i) {
      auto started = startAnother(tool(act));
      ASSERT_TRUE(started) << started.error().message();
      std::string text;
      EXPECT_EQ((*started)->read(text, kBound), Input::some);
      (*started)->stop(kPatience);
    }
  };
  {
    std::vector<std::jthread> threads;
    for (const char* act : {"draws", "draws and ends", "draws slowly", "floods"}) threads.emplace_back(some, act);
  }
  EXPECT_EQ(openDescriptors(), descriptors);
  EXPECT_FALSE(hasChildren());
}

}  // namespace
}  // namespace nimbo
