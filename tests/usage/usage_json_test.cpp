// SPDX-License-Identifier: MIT
#include "usage/usage_json.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "usage/utc_time.h"

namespace nimbo {
namespace {

UsageSnapshot snapshotOfTwoWindows() {
  return {.windows = {{"5-hour", 61.5, utc(2001, 1, 1, 1)}, {"Weekly", 8, std::nullopt}},
          .fetchedAt = utc(2026, 11, 21),
          .source = "Claude Code"};
}

TEST(UsageJson, KeysAreTheFieldsInTheirOrderAndDatesAreSecondsSince2001) {
  EXPECT_EQ(compactJsonText(usageJson(snapshotOfTwoWindows())),
            R"({"windows":[{"title":"5-hour","usedPercent":61.5,"resetsAt":3600.0},)"
            R"({"title":"Weekly","usedPercent":8.0}],"fetchedAt":816912000.0,"source":"Claude Code"})");
}

TEST(UsageJson, SnapshotOfTheWebIsWrittenWithoutSource) {
  UsageSnapshot snapshot = snapshotOfTwoWindows();
  snapshot.source.reset();
  EXPECT_FALSE(usageJson(snapshot).contains("source"));
}

TEST(UsageJson, StateHoldsItsSnapshotAndItsMessage) {
  const auto object = usageJson(UsageState{true, snapshotOfTwoWindows(), "Couldn’t reach the provider.", true});
  EXPECT_EQ(object["snapshot"], usageJson(snapshotOfTwoWindows()));
  EXPECT_EQ(object["message"], "Couldn’t reach the provider.");
}

TEST(UsageJson, NewStateIsWrittenWithItsTwoFlagsOnly) {
  EXPECT_EQ(compactJsonText(usageJson(UsageState{})), R"({"enabled":false,"isRefreshing":false})");
}

TEST(UsageJson, InvalidUtf8IsReplacedAndTheRestStays) {
  const UsageState state{.enabled = true, .message = "Caf\xE9 weekly"};
  EXPECT_EQ(compactJsonText(usageJson(state)),
            "{\"enabled\":true,\"message\":\"Caf\uFFFD weekly\",\"isRefreshing\":false}");
}

}  // namespace
}  // namespace nimbo
