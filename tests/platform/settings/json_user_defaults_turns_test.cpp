// SPDX-License-Identifier: MIT
// When the settings file is looked at and written: once in a turn of the main loop, and in the background.
#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "platform/settings/json_user_defaults_fixture.h"
#include "support/fake_main_loop.h"
#include "support/fake_work_queue.h"

namespace nimbo {
namespace {

using nlohmann::json;

/// A domain whose disk stalls until the test says otherwise.
class JsonUserDefaultsTurns : public JsonUserDefaultsTest {
 protected:
  [[nodiscard]] json inFile() const { return json::parse(tree.read(kFile)); }

  void writeOne() {
    ASSERT_TRUE(disk.runOne());
    loop.runPosted();
  }

  FakeMainLoop loop;
  FakeWorkQueue disk;
  std::optional<JsonUserDefaults> prefs{
      std::in_place, tree.path(), kDomain,
      JsonUserDefaults::Services{loop, [this](std::function<void()> work) { disk.async(std::move(work)); }}};
};

TEST_F(JsonUserDefaultsTurns, FileIsLookedAtOnceInATurnHoweverOftenItIsRead) {
  tree.write(kFile, R"({"count": 1, "on": false})");
  EXPECT_EQ(prefs->integer("count"), 1);
  tree.write(kFile, R"({"count": 2, "on": true})");
  for (int reading = 0; reading < 100; ++reading) {
    EXPECT_EQ(prefs->integer("count"), 1);
    EXPECT_EQ(prefs->boolean("on"), false);
  }
  EXPECT_EQ(loop.runPosted(), 0U) << "that costs no turn of its own";
  EXPECT_EQ(prefs->integer("count"), 2);
  EXPECT_EQ(prefs->boolean("on"), true);
}

TEST_F(JsonUserDefaultsTurns, StalledDiskHoldsUpNeitherSettingNorReading) {
  tree.write(kFile, R"({"count": 1, "name": "old"})");
  EXPECT_EQ(prefs->integer("count"), 1);
  prefs->set("count", 2);
  EXPECT_EQ(prefs->integer("count"), 2);
  EXPECT_EQ(prefs->string("name"), "old");
  EXPECT_EQ(inFile(), json({{"count", 1}, {"name", "old"}}));

  tree.write(kFile, R"({"count": 3, "name": "new"})");
  loop.runPosted();
  EXPECT_EQ(prefs->integer("count"), 2) << "what was set last counts until it is written";
  EXPECT_EQ(prefs->string("name"), "new");
}

TEST_F(JsonUserDefaultsTurns, ChangesMadeDuringAWriteFollowItTogether) {
  prefs->set("count", 1);
  prefs->set("count", 2);
  prefs->set("on", true);
  EXPECT_EQ(disk.waiting(), 1U);
  writeOne();
  EXPECT_EQ(inFile(), json({{"count", 1}}));
  EXPECT_EQ(prefs->integer("count"), 2);
  EXPECT_EQ(disk.waiting(), 1U);
  writeOne();
  EXPECT_EQ(inFile(), json({{"count", 2}, {"on", true}}));
  EXPECT_EQ(disk.waiting(), 0U);
}

TEST_F(JsonUserDefaultsTurns, ChangeMadeAfterAWriteThatIsNotYetKnownToBeOverIsWrittenToo) {
  prefs->set("count", 1);
  EXPECT_TRUE(disk.runOne());
  prefs->set("count", 2);
  loop.runPosted();
  EXPECT_EQ(prefs->integer("count"), 2);
  writeOne();
  EXPECT_EQ(inFile(), json({{"count", 2}}));
}

TEST_F(JsonUserDefaultsTurns, WrittenValueIsReadInTheSameTurnAndGivesWayToALaterHandEdit) {
  EXPECT_EQ(prefs->integer("count"), std::nullopt);
  prefs->set("count", 1);
  EXPECT_TRUE(disk.runOne());
  EXPECT_EQ(prefs->integer("count"), 1);
  loop.runPosted();
  EXPECT_EQ(prefs->integer("count"), 1);
  tree.write(kFile, R"({"count": 2})");
  loop.runPosted();
  EXPECT_EQ(prefs->integer("count"), 2);
}

TEST_F(JsonUserDefaultsTurns, HandEditBetweenAChangeAndItsWriteSurvives) {
  tree.write(kFile, R"({"count": 1})");
  EXPECT_EQ(prefs->integer("count"), 1);
  prefs->set("count", 2);
  tree.write(kFile, R"({"count": 1, "hand": "made"})");
  writeOne();
  EXPECT_EQ(inFile(), json({{"count", 2}, {"hand", "made"}}));
  EXPECT_EQ(prefs->string("hand"), "made");
}

TEST_F(JsonUserDefaultsTurns, FailedWriteIsTriedAgainWithTheNextChangeOnly) {
  tree.write(std::filesystem::path(kFile) / "in-the-way", "");
  prefs->set("count", 1);
  writeOne();
  EXPECT_EQ(disk.waiting(), 0U);
  std::filesystem::remove_all(file());
  prefs->set("on", true);
  writeOne();
  EXPECT_EQ(inFile(), json({{"count", 1}, {"on", true}}));
}

TEST_F(JsonUserDefaultsTurns, FailedWriteIsFollowedByWhatWasSetMeanwhile) {
  tree.write(std::filesystem::path(kFile) / "in-the-way", "");
  prefs->set("count", 1);
  prefs->set("on", true);
  writeOne();
  std::filesystem::remove_all(file());
  writeOne();
  EXPECT_EQ(inFile(), json({{"count", 1}, {"on", true}}));
}

TEST_F(JsonUserDefaultsTurns, EndWritesWhatStillWaits) {
  prefs->set("count", 1);
  prefs->set("on", true);
  prefs.reset();
  EXPECT_EQ(inFile(), json({{"count", 1}, {"on", true}}));

  tree.write(kFile, R"({"count": 2})");
  writeOne();
  EXPECT_EQ(inFile(), json({{"count", 2}})) << "the job that came too late";
}

TEST_F(JsonUserDefaultsTurns, EndWritesNothingWhenNothingWaits) {
  prefs->set("count", 1);
  writeOne();
  tree.write(kFile, R"({"count": 2})");
  prefs.reset();
  EXPECT_EQ(inFile(), json({{"count", 2}}));
}

TEST_F(JsonUserDefaultsTurns, EndWaitsForAWriteOnAnotherThread) {
  std::vector<std::thread> threads;
  for (int round = 0; round < 50; ++round) {
    JsonUserDefaults brief(tree.path(), kDomain,
                           {loop, [&](const std::function<void()>& work) { threads.emplace_back(work); }});
    brief.set("round", round);
    brief.set("count", round);
    if (round % 2 == 1) std::this_thread::yield();
    brief.set("count", -round);
  }
  EXPECT_EQ(inFile(), json({{"count", -49}, {"round", 49}}));
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(inFile(), json({{"count", -49}, {"round", 49}}));
}

}  // namespace
}  // namespace nimbo
