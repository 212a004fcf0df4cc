// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <future>
#include <memory>

#include "platform/foreground_programs.h"

namespace nimbo {

using ForegroundProgramsMaker = std::unique_ptr<ForegroundPrograms> (*)();

/// What a system's ForegroundPrograms promise of processes that really run.
class ForegroundProgramsContract : public testing::TestWithParam<ForegroundProgramsMaker> {
 protected:
  const std::unique_ptr<ForegroundPrograms> programs = GetParam()();
};

TEST_P(ForegroundProgramsContract, ExitStatusIsTheProgramsOwnOrItsSignalsAbove128) {
  EXPECT_EQ(programs->run({"sh", "-c", "exit 7"}), 7);
  EXPECT_EQ(programs->run({"sh", "-c", "kill -TERM $$"}), 128 + SIGTERM);
  EXPECT_EQ(programs->run({"/no/such/program"}).error(),
            "/no/such/program cannot be started: No such file or directory.");
}

TEST_P(ForegroundProgramsContract, AllProcessesAreWaitedFor) {
  std::vector<std::int32_t> children;
  for (int child = 0; child < 2; ++child) {
    children.push_back(::fork());
    while (children.back() == 0) ::pause();
  }
  auto waited = std::async(std::launch::async, [&] { return programs->waitFor(children).has_value(); });
  for (const pid_t child : children) {
    EXPECT_EQ(waited.wait_for(std::chrono::milliseconds(20)), std::future_status::timeout);
    ::kill(child, SIGKILL);
  }
  EXPECT_TRUE(waited.get());
  for (const pid_t child : children) EXPECT_EQ(::waitpid(child, nullptr, 0), child);
  EXPECT_EQ(programs->waitFor({::getpid(), children[0]}).error(),
            "There is no process " + std::to_string(children[0]) + ".");
}

}  // namespace nimbo
