// SPDX-License-Identifier: MIT
#include "platform/linux/terminal/pidfd_foreground_programs.h"

#include "platform/contracts/foreground_programs_contract.h"

namespace nimbo {
namespace {

std::unique_ptr<ForegroundPrograms> linuxPrograms() { return std::make_unique<PidfdForegroundPrograms>(::environ); }

INSTANTIATE_TEST_SUITE_P(Linux, ForegroundProgramsContract, testing::Values(linuxPrograms));

TEST(PidfdForegroundPrograms, ProcessHasTheNameThatTheKernelKeeps) {
  EXPECT_EQ(linuxPrograms()->nameOf(::getpid()), "platform_termin");
  EXPECT_EQ(linuxPrograms()->nameOf(-1), "");
}

}  // namespace
}  // namespace nimbo
