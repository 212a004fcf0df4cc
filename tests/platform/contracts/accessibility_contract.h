// SPDX-License-Identifier: MIT
// What every way to look at other applications promises (platform/accessibility.h).
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "support/fake_accessibility.h"

namespace nimbo {

/// A system that trusts this program and on which the application does not run yet.
struct AccessibilityHost {
  virtual ~AccessibilityHost() = default;
  [[nodiscard]] virtual Accessibility& accessibility() = 0;
  /// The application is started.
  virtual void show(const std::vector<FakeElement>& windows) = 0;
  virtual void hang() = 0;
  virtual void end() = 0;
  [[nodiscard]] virtual std::chrono::duration<double> uptime() const {
    return std::chrono::steady_clock::now().time_since_epoch();
  }
};

using AccessibilityHostMaker = std::unique_ptr<AccessibilityHost> (*)();

template <class Host>
std::unique_ptr<AccessibilityHost> makeAccessibilityHost() {
  return std::make_unique<Host>();
}

class AccessibilityContract : public testing::TestWithParam<AccessibilityHostMaker> {
 protected:
  using Milliseconds = std::chrono::milliseconds;

  [[nodiscard]] std::unique_ptr<AccessibleApplication> open(Milliseconds timeout = std::chrono::seconds(10)) {
    auto found = host->accessibility().application("com.anthropic.claudefordesktop");
    if (found) found->setMessagingTimeout(timeout);
    return found;
  }
  void show(const std::vector<FakeElement>& windows, Milliseconds timeout = std::chrono::seconds(10)) {
    host->show(windows);
    application = open(timeout);
    ASSERT_TRUE(application);
  }

  const std::unique_ptr<AccessibilityHost> host = GetParam()();
  std::unique_ptr<AccessibleApplication> application;
};

TEST_P(AccessibilityContract, ProgramIsTrusted) { EXPECT_TRUE(host->accessibility().isTrusted()); }

TEST_P(AccessibilityContract, ApplicationThatDoesNotRunIsAbsent) { EXPECT_FALSE(open()); }

TEST_P(AccessibilityContract, FirstWindowsComeInOrder) {
  show({{.title = "a"}, {.title = "b"}, {.title = "c"}});
  const auto windows = application->windows(2);
  ASSERT_EQ(windows.size(), 2U);
  EXPECT_EQ(windows[0]->title(), "a");
  EXPECT_EQ(windows[1]->title(), "b");
}

TEST_P(AccessibilityContract, TitleDescriptionAndValueAreToldApart) {
  show({{.title = "Title", .description = "Description", .value = "Value"}});
  const auto windows = application->windows(5);
  ASSERT_EQ(windows.size(), 1U);
  EXPECT_EQ(windows[0]->title(), "Title");
  EXPECT_EQ(windows[0]->description(), "Description");
  EXPECT_EQ(windows[0]->value(), "Value");
}

TEST_P(AccessibilityContract, ElementWithoutTextHasNoValue) {
  show({{.title = "Title"}});
  EXPECT_EQ(application->windows(5).at(0)->value(), std::nullopt);
}

TEST_P(AccessibilityContract, AtMostAsManyChildrenAsAskedForComeInOrderAndThenAgain) {
  show({{.title = "window", .children = {{.title = "a"}, {.title = "b"}, {.title = "c"}}}});
  application->exposeContent({});
  const auto window = std::move(application->windows(5).at(0));
  EXPECT_TRUE(window->children(0).empty());
  for (int round = 0; round < 2; ++round) {
    const auto children = window->children(2);
    ASSERT_EQ(children.size(), 2U);
    EXPECT_EQ(children[0]->title(), "a");
    EXPECT_EQ(children[1]->title(), "b");
  }
}

TEST_P(AccessibilityContract, ApplicationThatHangsHoldsEachCallForTheTimeoutAtMost) {
  constexpr Milliseconds kLimit{300};
  constexpr Milliseconds kBusyMachine{400};
  show({{.title = "window"}}, kLimit);
  const auto window = std::move(application->windows(5).at(0));
  host->hang();
  const auto ends = [&](const auto& call) {
    const auto start = host->uptime();
    call();
    EXPECT_LT(host->uptime() - start, kLimit + kBusyMachine);
  };
  ends([&] { EXPECT_EQ(window->title(), std::nullopt); });
  ends([&] { EXPECT_EQ(window->description(), std::nullopt); });
  ends([&] { EXPECT_EQ(window->value(), std::nullopt); });
  ends([&] { EXPECT_TRUE(window->children(10).empty()); });
}

TEST_P(AccessibilityContract, ApplicationThatEndsMeanwhileTellsNothingMore) {
  show({{.title = "window", .children = {{.title = "a"}}}});
  const auto window = std::move(application->windows(5).at(0));
  host->end();
  EXPECT_EQ(window->title(), std::nullopt);
  EXPECT_TRUE(window->children(10).empty());
  EXPECT_TRUE(application->windows(5).empty());
}

}  // namespace nimbo
