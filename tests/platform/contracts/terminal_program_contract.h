// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>

#include "platform/pseudo_terminal.h"

namespace nimbo::terminal_contract {

using std::chrono::milliseconds;
using std::chrono::seconds;
using Input = TerminalProgram::Input;
using SteadyClock = std::chrono::steady_clock;

inline constexpr seconds kBound{20};
inline constexpr milliseconds kPatience{500};

/// Reads to the end; false when it does not come.
inline bool readToEnd(TerminalProgram& program, std::string& output) {
  const auto deadline = SteadyClock::now() + kBound;
  while (SteadyClock::now() < deadline) {
    if (program.read(output, milliseconds{100}) == Input::ended) return true;
  }
  return false;
}

/// Makes programs that behave as terminal_tool.cpp's act of that name.
class TerminalWorld {
 public:
  virtual ~TerminalWorld() = default;
  [[nodiscard]] virtual std::unique_ptr<TerminalProgram> start(const std::string& act) = 0;
};
using TerminalWorldMaker = std::unique_ptr<TerminalWorld> (*)();

/// What every TerminalProgram promises, made up or not.
class TerminalProgramContract : public ::testing::TestWithParam<TerminalWorldMaker> {
 protected:
  void start(const std::string& act) { program = world->start(act); }

  const std::unique_ptr<TerminalWorld> world = GetParam()();
  std::unique_ptr<TerminalProgram> program;
  std::string output;
};

TEST_P(TerminalProgramContract, OneReadGivesAtMostEightKilobytes) {
  start("floods");
  for (int i = 0; i < 100; ++i) {
    const std::size_t before = output.size();
    ASSERT_NE(program->read(output, kBound), Input::ended);
    EXPECT_LE(output.size() - before, 8192U);
  }
}

TEST_P(TerminalProgramContract, ProgramThatEndsAtOnceIsSeenToHaveEnded) {
  start("ends");
  EXPECT_TRUE(readToEnd(*program, output));
  EXPECT_TRUE(output.empty()) << output;
  const auto deadline = SteadyClock::now() + kBound;
  while (program->running() && SteadyClock::now() < deadline) (void)program->read(output, milliseconds{1});
  EXPECT_FALSE(program->running());
}

TEST_P(TerminalProgramContract, StoppingTwiceDoesNothingMore) {
  start("says nothing");
  program->stop(kPatience);
  program->stop(kPatience);
  EXPECT_FALSE(program->running());
}

TEST_P(TerminalProgramContract, StoppedProgramHasEndedTheTerminal) {
  start("says nothing");
  program->stop(kPatience);
  EXPECT_EQ(program->read(output, seconds{1}), Input::ended);
}

}  // namespace nimbo::terminal_contract
