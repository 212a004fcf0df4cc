// SPDX-License-Identifier: MIT
#include "ui/remote/records.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "support/control_events.h"
#include "ui/qt/dashboard/sample_dashboard.h"
#include "ui/settings/settings_window_fixture.h"

namespace nimbo {
namespace {

/// What arrives of a content; a test that throws has found one that does not.
template <class Content>
Content sent(const Content& content) {
  const auto record = decodeForWindows(encode(Show<Content>{3, content}));
  return std::get<Show<Content>>(record.value()).content;
}

TEST(Records, EveryPageOfTheDashboardArrivesAsItIs) {
  SampleWorld world;
  DashboardController controller(world.sources());
  for (const auto tab : {DashboardTab::ai, DashboardTab::memory, DashboardTab::awake}) {
    world.fill(controller, tab, 40);
    EXPECT_EQ(sent(controller.content()), controller.content());
  }
}

using SettingsRecords = SettingsWindowTest;

TEST_F(SettingsRecords, EveryPageOfTheSettingsArrivesAsItIs) {
  for (std::size_t tab = 0; tab < window.content().tabs.labels.size(); ++tab) {
    ASSERT_TRUE(window.selectTab(tab));
    EXPECT_EQ(sent(window.content()), window.content());
  }
}

TEST(Records, WhatTheUserGaveArrivesWhateverItIs) {
  const auto moment = std::chrono::system_clock::time_point(std::chrono::minutes(29'000'000));
  for (const ControlEvent& event : {pressed("start"), switched("display", true), chosen("tabs", 2),
                                    typed("minutes", "9\n\"\xC3\xA9"), picked("date", moment)}) {
    const auto record = decodeFromWindows(encode(Acted{WindowName::settings, 5, event, "shown"}));
    const auto& told = std::get<Acted>(record.value());
    EXPECT_EQ(told.window, WindowName::settings);
    EXPECT_EQ(told.number, 5U);
    EXPECT_EQ(told.event, event);
    EXPECT_EQ(told.shown, "shown");
  }
}

TEST(Records, TextThatIsNoTextIsRepaired) {
  DashboardContent content;
  content.title.text = "a\xFF";
  EXPECT_EQ(sent(content).title.text, "a\uFFFD");
}

TEST(Records, NothingButWhatWasMeantIsRead) {
  const std::string good = encode(Open{WindowName::settings, 8, {Rect{1, 2, 3, 4}, {}}});
  ASSERT_TRUE(decodeForWindows(good));
  for (std::size_t length = 0; length < good.size(); ++length) EXPECT_FALSE(decodeForWindows(good.substr(0, length)));
  EXPECT_FALSE(decodeForWindows(good + " x"));
  for (const char* const text :
       {"", "null", "7", "{}", "[]", "[3]", "[3,[1,8,[null,[]],0]]", "[3,[2,8,[null,[]]]]", "[3,[1,-8,[null,[]]]]",
        "[3,[1,8.5,[null,[]]]]", "[3,[1,4294967296,[null,[]]]]", "[3,[\"1\",8,[null,[]]]]", "[-1,[]]", "[99,[]]",
        "[3,[1,8,[[1,2,3],[]]]]", "[3,[1,8,[[1,2,3,1e300],[]]]]", "[3,[1,8,[null,null]]]", "[0,[9.5]]"}) {
    EXPECT_FALSE(decodeForWindows(text)) << text;
    EXPECT_FALSE(decodeFromWindows(text)) << text;
  }
  EXPECT_FALSE(decodeForWindows(std::string(100'000, '[')));
}

TEST(Records, ContentThatIsNoNumberIsNotRead) {
  DashboardContent content;
  content.size.height = std::numeric_limits<double>::quiet_NaN();
  EXPECT_FALSE(decodeForWindows(encode(Show<DashboardContent>{0, content})));
}

TEST(Wording, IsThatOfAControlThatCanBeUsed) {
  SampleWorld world;
  DashboardController controller(world.sources());
  world.fill(controller, DashboardTab::awake, 3);
  const auto& content = controller.content();
  EXPECT_EQ(wording(content, pressed("start")), "Keep Mac awake");
  EXPECT_EQ(wording(content, chosen("duration", 1)), "30 minutes");
  EXPECT_EQ(wording(content, chosen("tabs", 0)), "AI");
  EXPECT_EQ(wording(content, switched("plugged", true)), "Only while connected to power");
  EXPECT_EQ(wording(content, pressed("extend")), std::nullopt) << "no session runs";
  EXPECT_EQ(wording(content, pressed("more")), std::nullopt) << "on another page";
  EXPECT_EQ(wording(content, pressed("no such thing")), std::nullopt);
}

}  // namespace
}  // namespace nimbo
