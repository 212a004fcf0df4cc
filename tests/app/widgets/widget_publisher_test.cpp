// SPDX-License-Identifier: MIT
#include "app/widgets/widget_publisher.h"

#include <gtest/gtest.h>

#include <memory>
#include <nlohmann/json.hpp>

#include "support/fake_platform_services.h"
#include "usage/usage_json.h"

namespace nimbo {
namespace {

using nlohmann::json;
using Events = std::vector<std::string>;
using Force = WidgetPublisher::Force;
using std::chrono::hours;
using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr const char* kFile = "/groups/T.group/usage-snapshot.json";
constexpr const char* kUnavailable =
    "Widget sharing unavailable. Install a signed build with its app group configured.";
const Events kPublished{"write /groups/T.group/usage-snapshot.json", "reload com.quellwerk.Nimbo.usage",
                        "reload com.quellwerk.Nimbo.temperature"};

class WidgetPublisherTest : public ::testing::Test {
 protected:
  WidgetPublisherTest() {
    bundle.appGroup = "T.group";
    publisher = makePublisher(true);
  }

  std::unique_ptr<WidgetPublisher> makePublisher(bool publishesWidgets) {
    return std::make_unique<WidgetPublisher>(platform, WidgetPublisher::Sources{settings, readings, usage},
                                             publishesWidgets,
                                             [this] { messages.push_back(publisher->widgetMessage().value_or("")); });
  }

  /// Lets all the jobs and their results through.
  void finish() {
    while (queue.runOne()) {
    }
    loop.runPosted();
  }

  /// What one request does, from beginning to end.
  Events write(Force force) {
    center.events.clear();
    publisher->writeWidgetSnapshot(force);
    finish();
    return center.events;
  }

  json written() const { return json::parse(center.files.at(kFile)); }

  void watchNothing() {
    settings.setMonitorTemperature(false);
    for (const auto provider : kAllUsageProviders) settings.setUsageEnabled(provider, false);
  }

  FakePlatformServices platform;
  BundleInfo& bundle = platform.bundle;
  FakeClock& clock = *platform.clock;
  FakeMainLoop& loop = platform.loop;
  FakeWorkQueue& queue = platform.utilities;
  FakeWidgetCenter& center = platform.widgets;
  Settings settings{platform.defaults};
  SystemReadings readings;
  UsageStates usage;
  Events messages;  ///< the message at each change, empty when it went
  std::unique_ptr<WidgetPublisher> publisher;
};

TEST_F(WidgetPublisherTest, FirstRequestWritesAndReloadsBothKindsInOrder) {
  settings.setMonitorTemperature(true);
  EXPECT_EQ(write(Force::no), kPublished);
  EXPECT_EQ(publisher->widgetMessage(), std::nullopt);
  EXPECT_TRUE(messages.empty());
}

TEST_F(WidgetPublisherTest, SnapshotHoldsTheReadingsTheSettingAndBothStates) {
  settings.setMonitorTemperature(true);
  readings.temperature = 54.25;
  readings.temperatureDate = clock.now() - seconds(3);
  usage[UsageProvider::codex].enabled = true;
  usage[UsageProvider::codex].message = "a message";
  usage[UsageProvider::claude].snapshot = UsageSnapshot{{{"Weekly", 40, {}}}, clock.now() - seconds(60)};
  write(Force::no);

  const WidgetSnapshot expected{.date = clock.now(),
                                .temperature = 54.25,
                                .temperatureDate = clock.now() - seconds(3),
                                .temperatureEnabled = true,
                                .codex = usage[UsageProvider::codex],
                                .claude = usage[UsageProvider::claude]};
  EXPECT_EQ(written(), json::parse(expected.encoded()));
}

TEST_F(WidgetPublisherTest, ProviderWithoutAStateGetsAnEmptyOne) {
  settings.setUsageEnabled(UsageProvider::codex, true);
  write(Force::no);
  EXPECT_EQ(written()["codex"], json::parse(R"({"enabled":false,"isRefreshing":false})"));
  EXPECT_EQ(written()["claude"], written()["codex"]);
}

TEST_F(WidgetPublisherTest, SecondRequestAfter299SecondsDoesNothing) {
  settings.setMonitorTemperature(true);
  write(Force::no);
  clock.advance(seconds(299));
  EXPECT_EQ(write(Force::no), Events{});
  clock.advance(milliseconds(999));
  EXPECT_EQ(write(Force::no), Events{});
}

TEST_F(WidgetPublisherTest, SecondRequestAfter300SecondsWrites) {
  settings.setMonitorTemperature(true);
  write(Force::no);
  clock.advance(seconds(300));
  EXPECT_EQ(write(Force::no), kPublished);
  EXPECT_EQ(written()["date"], secondsSince2001(clock.now()));
}

TEST_F(WidgetPublisherTest, ForcedRequestWritesAtOnceAndCountsForTheDistance) {
  settings.setMonitorTemperature(true);
  write(Force::no);
  clock.advance(seconds(100));
  EXPECT_EQ(write(Force::yes), kPublished);
  clock.advance(seconds(299));
  EXPECT_EQ(write(Force::no), Events{});
  clock.advance(seconds(1));
  EXPECT_EQ(write(Force::no), kPublished);
}

TEST_F(WidgetPublisherTest, ClockSetBackDoesNotSilenceIt) {
  settings.setMonitorTemperature(true);
  write(Force::no);
  clock.setNow(clock.now() - hours(24));
  EXPECT_EQ(write(Force::no), kPublished);
  clock.advance(seconds(299));
  EXPECT_EQ(write(Force::no), Events{});
}

TEST_F(WidgetPublisherTest, ClockSetForwardAndBackDoesNotSilenceIt) {
  settings.setMonitorTemperature(true);
  const auto before = clock.now();
  clock.setNow(before + hours(24 * 365));
  write(Force::no);
  clock.setNow(before);
  EXPECT_EQ(write(Force::no), kPublished);
}

TEST_F(WidgetPublisherTest, NothingWorthShowingIsNotWritten) {
  watchNothing();
  EXPECT_EQ(write(Force::no), Events{});
}

TEST_F(WidgetPublisherTest, EachSwitchAloneIsWorthShowing) {
  watchNothing();
  settings.setUsageEnabled(UsageProvider::codex, true);
  EXPECT_EQ(write(Force::no), kPublished);
  clock.advance(seconds(300));
  watchNothing();
  settings.setUsageEnabled(UsageProvider::claude, true);
  EXPECT_EQ(write(Force::no), kPublished);
  clock.advance(seconds(300));
  watchNothing();
  settings.setMonitorTemperature(true);
  EXPECT_EQ(write(Force::no), kPublished);
}

TEST_F(WidgetPublisherTest, ForcedRequestSaysThatThereIsNothingToShow) {
  watchNothing();
  EXPECT_EQ(write(Force::yes), kPublished);
  EXPECT_EQ(written()["temperatureEnabled"], false);
}

TEST_F(WidgetPublisherTest, RequestWithNothingToShowDoesNotDelayTheNext) {
  watchNothing();
  write(Force::no);
  settings.setMonitorTemperature(true);
  EXPECT_EQ(write(Force::no), kPublished);
}

TEST_F(WidgetPublisherTest, OneThatDoesNotPublishNeverWrites) {
  settings.setMonitorTemperature(true);
  publisher = makePublisher(false);
  EXPECT_EQ(write(Force::no), Events{});
  EXPECT_EQ(write(Force::yes), Events{});
  EXPECT_TRUE(messages.empty());
}

TEST_F(WidgetPublisherTest, FailedWriteSetsTheMessageAndReloadsNothing) {
  settings.setMonitorTemperature(true);
  center.failsToWrite = true;
  EXPECT_EQ(write(Force::no), Events{kPublished[0]});
  EXPECT_EQ(publisher->widgetMessage(), kUnavailable);
  EXPECT_EQ(messages, Events{kUnavailable});
}

TEST_F(WidgetPublisherTest, MissingAppGroupFailsEveryWrite) {
  settings.setMonitorTemperature(true);
  bundle.appGroup.reset();
  EXPECT_EQ(write(Force::no), Events{});
  EXPECT_EQ(write(Force::yes), Events{});
  EXPECT_EQ(messages, Events{kUnavailable}) << "told once";
}

TEST_F(WidgetPublisherTest, FailedWriteIsRetriedOnlyAfterTheDistance) {
  settings.setMonitorTemperature(true);
  center.failsToWrite = true;
  write(Force::no);
  clock.advance(seconds(299));
  EXPECT_EQ(write(Force::no), Events{});
  clock.advance(seconds(1));
  EXPECT_EQ(write(Force::no), Events{kPublished[0]});
}

TEST_F(WidgetPublisherTest, RequestWhileAWriteIsUnderWayWaitsForTheDistance) {
  settings.setMonitorTemperature(true);
  publisher->writeWidgetSnapshot(Force::no);
  publisher->writeWidgetSnapshot(Force::no);
  EXPECT_EQ(queue.waiting(), 1U);
}

TEST_F(WidgetPublisherTest, SuccessTakesTheMessageBack) {
  settings.setMonitorTemperature(true);
  center.failsToWrite = true;
  write(Force::no);
  center.failsToWrite = false;
  EXPECT_EQ(write(Force::yes), kPublished);
  EXPECT_EQ(publisher->widgetMessage(), std::nullopt);
  EXPECT_EQ(messages, (Events{kUnavailable, ""}));
}

TEST_F(WidgetPublisherTest, NothingTouchesTheDiskOnTheMainThread) {
  settings.setMonitorTemperature(true);
  publisher->writeWidgetSnapshot(Force::no);
  loop.runPosted();
  EXPECT_TRUE(center.events.empty());
  ASSERT_TRUE(queue.runOne());
  EXPECT_EQ(center.events, Events{kPublished[0]}) << "the widgets are told on the main thread";
  loop.runPosted();
  EXPECT_EQ(center.events, kPublished);
}

TEST_F(WidgetPublisherTest, SnapshotIsOfTheMomentOfTheRequest) {
  settings.setMonitorTemperature(true);
  readings.temperature = 40;
  publisher->writeWidgetSnapshot(Force::no);
  readings.temperature = 90;
  finish();
  EXPECT_EQ(written()["temperature"], 40);
}

TEST_F(WidgetPublisherTest, TwoWritesUnderWayEndWithTheLater) {
  settings.setMonitorTemperature(true);
  readings.temperature = 40;
  publisher->writeWidgetSnapshot(Force::yes);
  readings.temperature = 90;
  publisher->writeWidgetSnapshot(Force::yes);
  finish();
  EXPECT_EQ(written()["temperature"], 90);
}

TEST_F(WidgetPublisherTest, ResultAfterItsEndIsDropped) {
  settings.setMonitorTemperature(true);
  publisher->writeWidgetSnapshot(Force::no);
  publisher.reset();
  finish();
  EXPECT_EQ(center.events, Events{kPublished[0]});
  EXPECT_TRUE(messages.empty());
}

TEST_F(WidgetPublisherTest, NobodyNeedsToHearOfTheMessage) {
  settings.setMonitorTemperature(true);
  center.failsToWrite = true;
  WidgetPublisher quiet(platform, {settings, readings, usage}, true, nullptr);
  quiet.writeWidgetSnapshot(Force::no);
  finish();
  EXPECT_EQ(quiet.widgetMessage(), kUnavailable);
}

}  // namespace
}  // namespace nimbo
