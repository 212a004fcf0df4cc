// SPDX-License-Identifier: MIT
#include "platform/linux/terminal/session_processes.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <string>

#include "platform/linux/machine/proc_file.h"

namespace nimbo {
namespace {

TEST(ProcessPlace, SessionIsTheFourthNumberAfterTheName) {
  EXPECT_EQ(parseProcessPlace("812 (node) S 800 811 790 34816 811 4194304 9 0\n"),
            (ProcessPlace{.zombie = false, .session = 790}));
}

TEST(ProcessPlace, NameMayHoldBlanksAndParentheses) {
  EXPECT_EQ(parseProcessPlace("812 (a) R 1 2 3 (b) S 800 811 790 0 -1\n"),
            (ProcessPlace{.zombie = false, .session = 790}));
}

TEST(ProcessPlace, DeadProcessesAreTold) {
  EXPECT_TRUE(parseProcessPlace("812 (node) Z 800 811 790 0 -1 4227084\n")->zombie);
  EXPECT_TRUE(parseProcessPlace("812 (node) X 800 811 790 0 -1 4227084\n")->zombie);
}

TEST(ProcessPlace, OtherTextHasNone) {
  for (const char* text : {"", "812", "812 (node", "812 (node)", "812 (node) S 800 811", "812 (node) S 800 811 x 0"}) {
    EXPECT_EQ(parseProcessPlace(text), std::nullopt) << text;
  }
}

TEST(ProcessPlace, OwnSessionIsFound) {
  const auto text = readAttribute("/proc/self/stat");
  ASSERT_TRUE(text);
  EXPECT_EQ(parseProcessPlace(*text), (ProcessPlace{.zombie = false, .session = ::getsid(0)}));
}

}  // namespace
}  // namespace nimbo
