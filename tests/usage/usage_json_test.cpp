// SPDX-License-Identifier: MIT
#include "usage/usage_json.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "usage/utc_time.h"

namespace nimbo {
namespace {

using nlohmann::json;

constexpr auto kSeconds = DateCoding::secondsSince2001;
constexpr auto kIso = DateCoding::iso8601;

UsageSnapshot snapshotOfTwoWindows() {
  return {.windows = {{"5-hour", 61.5, utc(2026, 11, 21, 14, 30)}, {"Weekly", 8, std::nullopt}},
          .fetchedAt = utc(2026, 11, 21, 12),
          .source = "Claude Code"};
}

template <class Value>
std::string text(const Value& value, DateCoding dates) {
  return compactJsonText(usageJson(value, dates));
}

TEST(UsageJson, KeysAreTheFieldsInTheirOrder) {
  EXPECT_EQ(text(snapshotOfTwoWindows(), kIso),
            R"({"windows":[{"title":"5-hour","usedPercent":61.5,"resetsAt":"2026-11-21T14:30:00Z"},)"
            R"({"title":"Weekly","usedPercent":8.0}],"fetchedAt":"2026-11-21T12:00:00Z","source":"Claude Code"})");
}

TEST(UsageJson, DatesMayBeSecondsSinceTheYear2001) {
  EXPECT_EQ(text(UsageWindow{"Daily", 1, utc(2001, 1, 1, 0, 1, 0)}, kSeconds),
            R"({"title":"Daily","usedPercent":1.0,"resetsAt":60.0})");
  EXPECT_EQ(usageJson(UsageWindow{"Daily", 1, utc(2026, 11, 21)}, kSeconds)["resetsAt"], 816912000.0);
}

TEST(UsageJson, WindowWithoutResetRoundTripsWithoutTheKey) {
  const UsageWindow window{"Weekly", 12.25, std::nullopt};
  const json written = usageJson(window, kSeconds);
  EXPECT_FALSE(written.contains("resetsAt"));
  EXPECT_EQ(usageWindow(written, kSeconds), window);
}

TEST(UsageJson, SnapshotOfTheWebIsWrittenWithoutSource) {
  UsageSnapshot snapshot = snapshotOfTwoWindows();
  snapshot.source.reset();
  const json written = usageJson(snapshot, kIso);
  EXPECT_FALSE(written.contains("source"));
  EXPECT_EQ(usageSnapshot(written, kIso), snapshot);
}

TEST(UsageJson, StateRoundTripsInBothCodingsOfDates) {
  const UsageState state{true, snapshotOfTwoWindows(), "Couldn’t reach the provider.", true};
  for (const DateCoding dates : {kSeconds, kIso}) {
    EXPECT_EQ(usageState(json::parse(text(state, dates)), dates), state) << text(state, dates);
  }
}

TEST(UsageJson, NewStateIsWrittenWithItsTwoFlagsOnly) {
  EXPECT_EQ(text(UsageState{}, kIso), R"({"enabled":false,"isRefreshing":false})");
}

TEST(UsageJson, StateOfOnlyTheFlagsHasNoSnapshotAndNoMessage) {
  EXPECT_EQ(usageState(json::parse(R"({"enabled":true,"isRefreshing":false})"), kSeconds),
            (UsageState{.enabled = true}));
}

TEST(UsageJson, NullIsLikeAMissingOptionalKey) {
  const auto state =
      usageState(json::parse(R"({"enabled":true,"isRefreshing":false,"snapshot":null,"message":null})"), kSeconds);
  EXPECT_EQ(state, (UsageState{.enabled = true}));
}

TEST(UsageJson, UnknownKeysAreIgnored) {
  EXPECT_EQ(usageWindow(json::parse(R"({"title":"Daily","usedPercent":3,"colour":[1]})"), kIso),
            (UsageWindow{"Daily", 3, std::nullopt}));
}

TEST(UsageJson, EachMissingRequiredKeyFails) {
  const json whole = usageJson(UsageState{true, snapshotOfTwoWindows(), {}, false}, kIso);
  for (const char* const path : {"/enabled", "/isRefreshing", "/snapshot/windows", "/snapshot/fetchedAt",
                                 "/snapshot/windows/0/title", "/snapshot/windows/1/usedPercent"}) {
    const json lacking = whole.patch({{{"op", "remove"}, {"path", path}}});
    EXPECT_EQ(usageState(lacking, kIso), std::nullopt) << path;
  }
  EXPECT_TRUE(usageState(whole, kIso));
}

TEST(UsageJson, ValueOfAnotherKindFails) {
  const json whole = usageJson(UsageState{true, snapshotOfTwoWindows(), "message", false}, kIso);
  for (const char* const path : {"/enabled", "/message", "/snapshot", "/snapshot/windows", "/snapshot/source",
                                 "/snapshot/windows/0/title", "/snapshot/windows/0/resetsAt"}) {
    const json wrong = whole.patch({{{"op", "replace"}, {"path", path}, {"value", 7}}});
    EXPECT_EQ(usageState(wrong, kIso), std::nullopt) << path;
  }
}

TEST(UsageJson, WhatIsNoObjectFails) {
  for (const char* const other : {"[]", "null", "7", "\"text\""}) {
    EXPECT_EQ(usageState(json::parse(other), kIso), std::nullopt) << other;
    EXPECT_EQ(usageSnapshot(json::parse(other), kIso), std::nullopt) << other;
    EXPECT_EQ(usageWindow(json::parse(other), kIso), std::nullopt) << other;
  }
}

TEST(UsageJson, DateThatNoInstantReachesFails) {
  for (const double seconds : {1e10, -1e300, 1e300}) {
    const json window = {{"title", "Daily"}, {"usedPercent", 3}, {"resetsAt", seconds}};
    EXPECT_EQ(usageWindow(window, kSeconds), std::nullopt) << seconds;
  }
}

TEST(UsageJson, DateOfTheOtherCodingFails) {
  const json window = usageJson(UsageWindow{"Daily", 3, utc(2026, 11, 21)}, kIso);
  EXPECT_EQ(usageWindow(window, kSeconds), std::nullopt);
}

TEST(UsageJson, InvalidUtf8IsReplacedAndTheRestStays) {
  EXPECT_EQ(text(UsageWindow{"Caf\xE9 weekly", 1, std::nullopt}, kIso),
            "{\"title\":\"Caf\uFFFD weekly\",\"usedPercent\":1.0}");
}

}  // namespace
}  // namespace nimbo
