// SPDX-License-Identifier: MIT
#include "app/reports/console_reports.h"

#include <gtest/gtest.h>

#include "platform/mac_wording.h"
#include "support/fake_accessibility.h"

namespace nimbo {
namespace {

class ClaudeDesktopCheckTest : public testing::Test {
 protected:
  ConsoleReport check() {
    return makeClaudeDesktopCheck(ClaudeDesktopUsage(accessibility, clock, macWording()), "UTC");
  }

  FakeClock clock;
  FakeAccessibility accessibility{clock};
};

TEST_F(ClaudeDesktopCheckTest, ReadingIsPrintedAsOneLineOfJson) {
  accessibility.windows = {
      {.children = {{.title = "Plan usage limits"},
                    {.title = "Current session"},
                    {.title = "61% used"},
                    {.title = "Resets in 1h"},
                    {.title = "All models"},
                    {.title = "12.5% used"}}},
  };
  const ConsoleReport outcome = check();
  EXPECT_EQ(outcome.output,
            R"({"windows":[{"title":"5-hour","usedPercent":61.0,"resetsAt":795176813.0},)"
            R"({"title":"Weekly","usedPercent":12.5}],"fetchedAt":795173213.0,"source":"Claude Desktop"})"
            "\n");
  EXPECT_EQ(outcome.errorOutput, "");
  EXPECT_EQ(outcome.exitStatus, 0);
}

TEST_F(ClaudeDesktopCheckTest, BytesThatAreNotUtf8AreReplaced) {
  accessibility.windows = {
      {.children = {{.title = "Plan usage limits"}, {.title = "Current week (\xff only)"}, {.title = "1% used"}}}};
  EXPECT_NE(check().output.find("\"title\":\"\uFFFD weekly\""), std::string::npos) << check().output;
}

TEST_F(ClaudeDesktopCheckTest, FailedReadingTellsWhyOnStandardError) {
  accessibility.running = "";
  const ConsoleReport outcome = check();
  EXPECT_EQ(outcome.output, "");
  EXPECT_EQ(outcome.errorOutput, "Desktop fallback: open Claude → Settings → Usage, then refresh.\n");
  EXPECT_EQ(outcome.exitStatus, 1);
}

TEST_F(ClaudeDesktopCheckTest, EachFailureHasItsOwnText) {
  accessibility.trusted = false;
  EXPECT_EQ(check().errorOutput,
            "Desktop fallback needs Accessibility access. Enable it in Nimbo Settings → AI Usage.\n");
  accessibility.trusted = true;
  EXPECT_EQ(check().errorOutput, "Desktop fallback: leave Claude → Settings → Usage open, then refresh.\n");
  EXPECT_EQ(check().exitStatus, 1);
}

}  // namespace
}  // namespace nimbo
