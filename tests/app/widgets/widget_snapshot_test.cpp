// SPDX-License-Identifier: MIT
#include "app/widgets/widget_publisher.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>

#include "support/fake_widget_center.h"

namespace nimbo {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr const char* kSnapshotFile = "/groups/T.group/usage-snapshot.json";
const WidgetSnapshot::Time kYear2001{seconds(978307200)};

WidgetSnapshot fullSnapshot() {
  WidgetSnapshot snapshot{.date = kYear2001 + milliseconds(800'000'000'250)};
  snapshot.temperature = 54.5;
  snapshot.temperatureDate = kYear2001 + seconds(799'999'990);
  snapshot.temperatureEnabled = true;
  snapshot.codex.enabled = true;
  snapshot.codex.snapshot = UsageSnapshot{{{"5-hour", 61.5, kYear2001 + seconds(800'003'600)}, {"Weekly", 12, {}}},
                                          kYear2001 + seconds(799'999'000)};
  snapshot.claude.enabled = true;
  snapshot.claude.snapshot =
      UsageSnapshot{{{"Session", 3, {}}}, kYear2001 + seconds(799'000'000), std::string("Claude Code")};
  snapshot.claude.message = "Couldn’t reach the provider. Check your connection and refresh.";
  snapshot.claude.isRefreshing = true;
  return snapshot;
}

TEST(WidgetSnapshot, EveryFieldIsWrittenInOrderWithDatesAsSecondsSince2001) {
  EXPECT_EQ(fullSnapshot().encoded(),
            R"({"date":800000000.25,"temperature":54.5,"temperatureDate":799999990.0,"temperatureEnabled":true,)"
            R"("codex":{"enabled":true,"snapshot":{"windows":[)"
            R"({"title":"5-hour","usedPercent":61.5,"resetsAt":800003600.0},{"title":"Weekly","usedPercent":12.0}],)"
            R"("fetchedAt":799999000.0},"isRefreshing":false},)"
            R"("claude":{"enabled":true,"snapshot":{"windows":[{"title":"Session","usedPercent":3.0}],)"
            R"("fetchedAt":799000000.0,"source":"Claude Code"},)"
            R"("message":"Couldn’t reach the provider. Check your connection and refresh.","isRefreshing":true}})");
}

TEST(WidgetSnapshot, FileThatTheWidgetsAreTestedWithIsWhatIsWritten) {
  std::ifstream file(NIMBO_RECORDED_SNAPSHOT, std::ios::binary);
  const std::string recorded{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  EXPECT_EQ(recorded, fullSnapshot().encoded());
}

TEST(WidgetSnapshot, WithoutATemperatureReadingItsKeysAreLeftOut) {
  EXPECT_EQ(WidgetSnapshot{.date = kYear2001}.encoded(),
            R"({"date":0.0,"temperatureEnabled":false,"codex":{"enabled":false,"isRefreshing":false},)"
            R"("claude":{"enabled":false,"isRefreshing":false}})");
}

TEST(WidgetSnapshot, DatesBefore2001AreNegative) {
  const WidgetSnapshot snapshot{.date = kYear2001 - milliseconds(1500)};
  EXPECT_TRUE(snapshot.encoded().starts_with(R"({"date":-1.5,)")) << snapshot.encoded();
}

TEST(WidgetSnapshot, BytesThatAreNoTextStillGiveAFileThatReads) {
  auto snapshot = fullSnapshot();
  snapshot.codex.message = "broken \xff \"quoted\"\n";
  EXPECT_EQ(nlohmann::json::parse(snapshot.encoded())["codex"]["message"], "broken \uFFFD \"quoted\"\n");
}

TEST(WidgetSnapshot, IsWrittenIntoTheFolderOfItsGroup) {
  const FakeWidgetCenter center;
  EXPECT_TRUE(fullSnapshot().write(center, "T.group"));
  ASSERT_EQ(center.files.size(), 1U);
  EXPECT_EQ(center.files.at(kSnapshotFile), fullSnapshot().encoded());
}

TEST(WidgetSnapshot, WithoutAGroupNothingIsTriedAndTheWriteFails) {
  const FakeWidgetCenter center;
  EXPECT_FALSE(fullSnapshot().write(center, std::nullopt));
  EXPECT_TRUE(center.events.empty());
}

TEST(WidgetSnapshot, WithoutAFolderForTheGroupNothingIsTriedAndTheWriteFails) {
  FakeWidgetCenter center;
  center.givesContainers = false;
  EXPECT_FALSE(fullSnapshot().write(center, "T.group"));
  EXPECT_TRUE(center.events.empty());
}

TEST(WidgetSnapshot, RefusedFileIsAFailureAndTheOldOneStands) {
  FakeWidgetCenter center;
  center.files[kSnapshotFile] = "old";
  center.failsToWrite = true;
  EXPECT_FALSE(fullSnapshot().write(center, "T.group"));
  EXPECT_EQ(center.files.at(kSnapshotFile), "old");
}

}  // namespace
}  // namespace nimbo
