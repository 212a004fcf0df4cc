// SPDX-License-Identifier: MIT
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <future>
#include <string>
#include <vector>

#include "platform/contracts/terminal_program_contract.h"
#include "platform/posix/files/unique_fd.h"
#include "platform/pseudo_terminal.h"
#include "support/services/temporary_tree.h"

namespace nimbo::terminal_contract {

namespace fs = std::filesystem;

inline std::ptrdiff_t openDescriptors() {
  return std::distance(fs::directory_iterator("/dev/fd"), fs::directory_iterator());
}

inline bool hasChildren() {
  siginfo_t child{};
  return ::waitid(P_ALL, 0, &child, WEXITED | WNOHANG | WNOWAIT) == 0;
}

/// Gone, or dead and waiting for somebody else to reap it.
inline bool isGone(pid_t pid) {
  std::ifstream file("/proc/" + std::to_string(pid) + "/stat");
  const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  return ::kill(pid, 0) != 0 || text.find(") Z ") != std::string::npos;
}

using PseudoTerminalsMaker = std::unique_ptr<PseudoTerminals> (*)();

/// What the pseudo-terminals of a system promise of programs that really run.
class PseudoTerminalContract : public ::testing::TestWithParam<PseudoTerminalsMaker> {
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
    const auto terminal = terminals->open({.columns = 160, .rows = 80});
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

  [[nodiscard]] bool reports(const std::string& line) const {
    return output.find("\n" + line + "\r\n") != std::string::npos;
  }

  TemporaryTree folder;
  TemporaryTree elsewhere;
  const std::unique_ptr<PseudoTerminals> terminals = GetParam()();
  std::unique_ptr<TerminalProgram> program;
  std::string output;
};

TEST_P(PseudoTerminalContract, ProgramGetsExactlyItsArgumentsVariablesAndFolder) {
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

TEST_P(PseudoTerminalContract, TerminalHasTheSizeAndControlsTheProgramsOwnSession) {
  start("reports");
  ASSERT_TRUE(readUntil("end of report"));
  for (const char* line :
       {"columns=160", "rows=80", "pixels=0", "terminals=3", "leads session=1", "controls terminal=1"}) {
    EXPECT_TRUE(reports(line)) << line << " is not in:\n" << output;
  }
}

TEST_P(PseudoTerminalContract, DescriptorsAndSignalSettingsStayHere) {
  const UniqueFd leaky(::open("/dev/null", O_RDONLY));  // not close-on-exec
  ASSERT_EQ(::fcntl(leaky.get(), F_GETFD), 0);
  sigset_t blocked;
  sigset_t before;
  sigfillset(&blocked);
  ::pthread_sigmask(SIG_SETMASK, &blocked, &before);
  const auto handler = ::signal(SIGPIPE, SIG_IGN);
  start("reports");
  ::signal(SIGPIPE, handler);
  ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
  ASSERT_TRUE(readUntil("end of report"));
  EXPECT_TRUE(reports("descriptors=3")) << output;
  EXPECT_TRUE(reports("signals=0")) << output;
}

TEST_P(PseudoTerminalContract, WhatIsWrittenIsTypedIn) {
  start("echoes");
  ASSERT_TRUE(readUntil("ready"));
  EXPECT_TRUE(program->write("y\r"));
  EXPECT_TRUE(readUntil("heard:y\r\n")) << output;
  EXPECT_TRUE(program->running());
}

TEST_P(PseudoTerminalContract, WritingToAProgramThatDoesNotReadEndsUnfinished) {
  start("says nothing");
  EXPECT_FALSE(program->write(std::string(1 << 20, 'x')));
}

TEST_P(PseudoTerminalContract, SilentProgramIsWaitedForNoLongerThanPatience) {
  start("says nothing");
  const auto begin = SteadyClock::now();
  EXPECT_EQ(program->read(output, milliseconds{50}), Input::nothing);
  const auto waited = SteadyClock::now() - begin;
  EXPECT_GE(waited, milliseconds{49});
  EXPECT_LT(waited, seconds{2});
  EXPECT_EQ(program->read(output, milliseconds{0}), Input::nothing);
  EXPECT_TRUE(output.empty());
}

TEST_P(PseudoTerminalContract, EverythingWrittenBeforeTheProgramEndedIsRead) {
  start("floods and ends");
  ASSERT_TRUE(readToEnd(*program, output));
  EXPECT_EQ(std::count(output.begin(), output.end(), '\n'), 20000);
  EXPECT_TRUE(output.ends_with("\n19999\r\n"));
}

TEST_P(PseudoTerminalContract, PoliteProgramEndsAtOnceWhenStopped) {
  start("says nothing");
  const auto begin = SteadyClock::now();
  program->stop(kBound);
  EXPECT_LT(SteadyClock::now() - begin, seconds{5});
  EXPECT_FALSE(program->running());
  EXPECT_FALSE(hasChildren());
}

TEST_P(PseudoTerminalContract, LongGoodbyeOnTheTerminalIsHeardOut) {
  start("says goodbye");
  ASSERT_TRUE(readUntil("ready"));
  program->stop(kBound);
  EXPECT_EQ(elsewhere.read("notes"), "goodbye\n");
}

TEST_P(PseudoTerminalContract, ProgramThatIgnoresTerminationIsKilledAfterPatience) {
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

TEST_P(PseudoTerminalContract, DestroyingAProgramLeavesNothing) {
  const auto descriptors = openDescriptors();
  start("ignores all");
  ASSERT_TRUE(readUntil("Current week"));
  program.reset();
  EXPECT_EQ(openDescriptors(), descriptors);
  EXPECT_FALSE(hasChildren());
}

TEST_P(PseudoTerminalContract, ProcessThatIsLeftBehindHoldsUpNothingAndEndsWithTheTerminal) {
  for (const char* act : {"leaves a child", "leaves a job", "leaves a daemon"}) {
    SCOPED_TRACE(act);
    fs::remove(notes());
    output.clear();
    start(act);
    ASSERT_TRUE(readUntil("Current week")) << output;
    const pid_t pid = std::stoi(elsewhere.read("notes"));
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
}

TEST_P(PseudoTerminalContract, ChildOfAProgramThatRunsEndsWithIt) {
  start("keeps a child");
  ASSERT_TRUE(readUntil("Current week"));
  const pid_t pid = std::stoi(elsewhere.read("notes"));
  ASSERT_FALSE(isGone(pid));
  program.reset();
  EXPECT_TRUE(isGone(pid));
}

TEST_P(PseudoTerminalContract, AnotherProgramsSessionIsLeftAlone) {
  start("echoes");
  ASSERT_TRUE(readUntil("ready"));
  auto other = startAnother(tool("leaves a daemon"));
  ASSERT_TRUE(other);
  (*other)->stop(kPatience);
  EXPECT_TRUE(program->write("still here\r"));
  EXPECT_TRUE(readUntil("heard:still here"));
}

TEST_P(PseudoTerminalContract, MissingExecutableIsNotStartedAndLeavesNothing) {
  const auto descriptors = openDescriptors();
  ChildProgram child = tool("ends");
  child.executable = elsewhere.path() / "missing";
  const auto started = startAnother(child);
  ASSERT_FALSE(started);
  EXPECT_EQ(started.error(), std::errc::no_such_file_or_directory);
  EXPECT_EQ(openDescriptors(), descriptors);
  EXPECT_FALSE(hasChildren());
}

TEST_P(PseudoTerminalContract, FileThatIsNoProgramIsNotStarted) {
  ChildProgram child = tool("ends");
  child.executable = elsewhere.write("text", "not a program");
  fs::permissions(child.executable, fs::perms::owner_all);
  const auto started = startAnother(child);
  ASSERT_FALSE(started);
  EXPECT_EQ(started.error(), std::errc::executable_format_error);
}

TEST_P(PseudoTerminalContract, MissingFolderKeepsTheProgramFromStarting) {
  ChildProgram child = tool("ends");
  child.folder = folder.path() / "missing";
  const auto started = startAnother(child);
  ASSERT_FALSE(started);
  EXPECT_EQ(started.error(), std::errc::no_such_file_or_directory);
}

TEST_P(PseudoTerminalContract, NoDescriptorLeftMeansNoTerminal) {
  // Once before, because the sanitizer's first look at an object takes a descriptor.
  PseudoTerminals& used = *terminals;
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

TEST_P(PseudoTerminalContract, TwoHundredProgramsOnFourThreadsLeaveNothing) {
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
    std::vector<std::future<void>> threads;
    for (const char* act : {"draws", "draws and ends", "draws slowly", "floods"}) {
      threads.push_back(std::async(std::launch::async, some, act));
    }
  }
  EXPECT_EQ(openDescriptors(), descriptors);
  EXPECT_FALSE(hasChildren());
}

/// A system's own, made by `kMake`.
template <PseudoTerminalsMaker kMake>
class RealTerminals final : public TerminalWorld {
 public:
  [[nodiscard]] std::unique_ptr<TerminalProgram> start(const std::string& act) override {
    const auto terminal = terminals_->open({.columns = 160, .rows = 80});
    auto program = (*terminal)->start({NIMBO_TERMINAL_TOOL, {}, {"TOOL_ACT=" + act}, folder_.path()});
    EXPECT_TRUE(program);
    return *std::move(program);
  }

 private:
  const TemporaryTree folder_;
  const std::unique_ptr<PseudoTerminals> terminals_ = kMake();
};

}  // namespace nimbo::terminal_contract
