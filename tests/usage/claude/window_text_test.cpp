// SPDX-License-Identifier: MIT
#include "usage/claude/window_text.h"

#include <gtest/gtest.h>

#include "support/fake_accessibility.h"

namespace nimbo {
namespace {

FakeElement text(const std::string& words) { return {.title = words, .value = words}; }

FakeElement group(std::vector<FakeElement> children) { return {.children = std::move(children)}; }

/// `levels` of elements around `content`.
FakeElement nested(int levels, FakeElement content) {
  for (int level = 0; level < levels; ++level) content = group({std::move(content)});
  return content;
}

class WindowTextTest : public testing::Test {
 protected:
  std::string read(FakeElement window) {
    accessibility.windows = {std::move(window)};
    const auto application = accessibility.application(accessibility.running);
    application->setMessagingTimeout(std::chrono::milliseconds(300));
    const auto windows = application->windows(1);
    accessibility.visited = 0;
    return windowText(*windows.front(), clock, stop.get_token());
  }

  FakeClock clock;
  FakeAccessibility accessibility{clock};
  std::stop_source stop;
};

TEST_F(WindowTextTest, TitleDescriptionAndValueComeInThisOrderAheadOfTheChildren) {
  EXPECT_EQ(read({.title = "a", .description = "b", .value = "c", .children = {text("d"), text("e")}}),
            "a\nb\nc\nd\ne");
}

TEST_F(WindowTextTest, ChildrenComeDepthFirst) {
  EXPECT_EQ(read(group({group({text("a"), group({text("b")})}), text("c")})), "a\nb\nc");
}

TEST_F(WindowTextTest, TextIdenticalToTheLastLineIsKeptOnce) {
  EXPECT_EQ(read({.title = "a", .description = "a", .value = "b", .children = {text("b"), text("c"), text("c")}}),
            "a\nb\nc");
}

TEST_F(WindowTextTest, TextThatCameBeforeTheLastLineIsKeptAgain) {
  EXPECT_EQ(read(group({text("a"), text("b"), text("a")})), "a\nb\na");
}

TEST_F(WindowTextTest, EmptyAndAbsentTextsAreNoLines) {
  EXPECT_EQ(read({.title = "", .value = "a", .children = {{}, text(""), text("a"), text("b")}}), "a\nb");
  EXPECT_EQ(read({}), "");
}

TEST_F(WindowTextTest, TextOf299CharactersIsReadAndOf300IsNot) {
  const auto of = [](int length) {
    std::string words;
    for (int index = 0; index < length; ++index) words += "é";  // of two bytes: it is characters that count
    return words;
  };
  EXPECT_EQ(read(text(of(299))), of(299));
  EXPECT_EQ(read(text(of(300))), "");
  EXPECT_EQ(read(group({text("a"), text(of(300)), text("a")})), "a");
}

TEST_F(WindowTextTest, DepthOf34IsReadAndOf35IsNot) {
  EXPECT_EQ(read(nested(34, text("a"))), "a");
  EXPECT_EQ(read(nested(35, text("a"))), "");
  EXPECT_EQ(accessibility.visited, 35);
}

TEST_F(WindowTextTest, TreeWithoutEndIsLeftAtTheDeepestLevel) {
  EXPECT_EQ(read(nested(1000, text("a"))), "");
  EXPECT_EQ(accessibility.visited, 35);
}

TEST_F(WindowTextTest, ElementNumber1500IsReadAndThe1501stIsNot) {
  FakeElement window = group(std::vector<FakeElement>(1498));
  window.children.push_back(text("a"));
  window.children.push_back(text("b"));
  EXPECT_EQ(read(window), "a");
  EXPECT_EQ(accessibility.visited, 1500);
}

TEST_F(WindowTextTest, ElementsAreCountedAcrossBranches) {
  const FakeElement branch = group(std::vector<FakeElement>(749));
  EXPECT_EQ(read(group({branch, branch, text("a")})), "");
  EXPECT_EQ(read(group({branch, group(std::vector<FakeElement>(747)), text("a")})), "a");
}

TEST_F(WindowTextTest, ElementReachedAfterTwoSecondsIsReadAndLaterIsNot) {
  FakeElement window = group({text("a"), text("b"), text("c")});
  window.children[0].onVisit = [this] { clock.advance(std::chrono::seconds(2)); };
  window.children[1].onVisit = [this] { clock.advance(std::chrono::milliseconds(1)); };
  EXPECT_EQ(read(window), "a\nb");
}

TEST_F(WindowTextTest, SlowApplicationIsReadForTwoSeconds) {
  accessibility.perCall = std::chrono::milliseconds(10);
  const auto before = clock.uptime();
  EXPECT_EQ(read(group(std::vector<FakeElement>(1000))), "");
  EXPECT_NEAR((clock.uptime() - before).count(), 2, 0.05);
  EXPECT_NEAR(accessibility.visited, 51, 1);
}

TEST_F(WindowTextTest, ApplicationThatHangsHalfwayIsLeftAfterTwoSecondsAndOneElement) {
  FakeElement window = group(std::vector<FakeElement>(1000, text("a")));
  window.children[3].onVisit = [this] { accessibility.hangs = true; };
  const auto before = clock.uptime();
  EXPECT_EQ(read(window), "a");
  EXPECT_LT((clock.uptime() - before).count(), 2 + 4 * 0.3 + 1e-6);
}

TEST_F(WindowTextTest, StopAskedForEndsTheWalkAtTheNextElement) {
  FakeElement window = group({text("a"), text("b"), text("c")});
  window.children[1].onVisit = [this] { stop.request_stop(); };
  EXPECT_EQ(read(window), "a\nb");
  EXPECT_EQ(accessibility.visited, 3);
}

}  // namespace
}  // namespace nimbo
