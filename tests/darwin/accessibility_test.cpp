// SPDX-License-Identifier: MIT
#include "darwin/fakes/fake_ax.h"
#include "platform/contracts/accessibility_contract.h"
#include "platform/darwin/accessibility/ax_accessibility.h"
#include "platform/mac_wording.h"
#include "usage/claude/claude_desktop_usage.h"

namespace nimbo {
namespace {

using namespace std::chrono_literals;
using fake::text;

struct AxHost final : AccessibilityHost {
  [[nodiscard]] Accessibility& accessibility() override { return ax; }
  void show(const std::vector<FakeElement>& windows) override {
    runs = true;
    for (const auto& window : windows) system.windows.push_back(&add(window));
  }
  void hang() override { system.hangs = true; }
  void end() override { system.isGone = true; }
  [[nodiscard]] std::chrono::duration<double> uptime() const override { return clock.uptime(); }

  fake::Ax::Node& add(const FakeElement& element) {
    auto& node = system.add({});
    const auto put = [&](const char* name, const std::optional<std::string>& words) {
      if (words) node.attributes.emplace(name, text(*words));
    };
    put("AXTitle", element.title);
    put("AXDescription", element.description);
    put("AXValue", element.value);
    for (const auto& child : element.children) node.children.push_back(&add(child));
    return node;
  }

  FakeClock clock;
  fake::Ax system{clock};
  bool runs = false;
  AxAccessibility ax{[this](const std::string& bundleIdentifier) {
    EXPECT_EQ(bundleIdentifier, "com.anthropic.claudefordesktop");
    return runs ? std::optional(fake::Ax::kProcess) : std::nullopt;
  }};
};
INSTANTIATE_TEST_SUITE_P(Ax, AccessibilityContract, testing::Values(makeAccessibilityHost<AxHost>));

class AxAccessibilityTest : public testing::Test {
 protected:
  [[nodiscard]] std::unique_ptr<AccessibleElement> firstWindow() {
    return std::move(host.ax.application("com.anthropic.claudefordesktop")->windows(5).at(0));
  }
  [[nodiscard]] std::string message() {
    const auto outcome = ClaudeDesktopUsage(host.ax, host.clock, macWording()).read("Europe/Berlin");
    return outcome ? "a snapshot" : outcome.error().message;
  }

  AxHost host;
};

TEST_F(AxAccessibilityTest, UserIsAskedOnRequestAlone) {
  host.system.isTrusted = false;
  EXPECT_FALSE(host.ax.isTrusted());
  EXPECT_EQ(host.system.timesPrompted, 0);
  host.ax.requestTrust();
  EXPECT_EQ(host.system.timesPrompted, 1);
}

TEST_F(AxAccessibilityTest, WhatIsNoTextIsAbsent) {
  auto& window = host.system.add({{"AXTitle", fake::number(5)}, {"AXValue", fake::number(61)}});
  host.system.windows = {&window};
  host.runs = true;
  EXPECT_EQ(firstWindow()->title(), std::nullopt);
  EXPECT_EQ(firstWindow()->value(), std::nullopt);
}

TEST_F(AxAccessibilityTest, WhatIsNoElementIsLeftOut) {
  host.show({{.title = "window"}});
  auto& attributes = host.system.windows[0]->attributes;
  attributes.insert_or_assign("AXChildren", fake::array({text("no element"), fake::number(1)}));
  EXPECT_TRUE(firstWindow()->children(10).empty());
  attributes.insert_or_assign("AXChildren", text("no list"));
  EXPECT_TRUE(firstWindow()->children(10).empty());
}

TEST_F(AxAccessibilityTest, FailedCallYieldsNothingForThatElement) {
  host.show({{.title = "window", .value = "value", .children = {{.title = "a"}}}});
  for (const AXError error : {kAXErrorFailure, kAXErrorInvalidUIElement, kAXErrorAttributeUnsupported}) {
    host.system.failures = {{"AXTitle", error}, {"AXChildren", error}};
    EXPECT_EQ(firstWindow()->title(), std::nullopt);
    EXPECT_EQ(firstWindow()->value(), "value");
    EXPECT_TRUE(firstWindow()->children(10).empty());
  }
}

TEST_F(AxAccessibilityTest, WebEngineIsMadeToShowItsPage) {
  host.system.showsContent = false;
  host.show({{.title = "Claude",
              .children = {{.title = "Plan usage limits"},
                           {.title = "Current session"},
                           {.value = "61% used", .children = {{.value = "61% used"}}}}}});
  EXPECT_EQ(message(), "a snapshot");
}

TEST_F(AxAccessibilityTest, ApplicationThatHangsIsLeftInTime) {
  host.show({{.title = "Claude"}});
  host.system.hangs = true;
  const auto start = host.clock.uptime();
  EXPECT_EQ(message(), "Desktop fallback: leave Claude → Settings → Usage open, then refresh.");
  EXPECT_LT(host.clock.uptime() - start, 1s);
}

TEST_F(AxAccessibilityTest, ApplicationThatHangsAmidItsPageIsLeftInTime) {
  host.show({{.title = "Claude"}});
  auto& window = *host.system.windows[0];
  for (int child = 0; child < 100; ++child) window.children.push_back(&host.system.add({}));
  const auto application = host.ax.application("com.anthropic.claudefordesktop");
  application->setMessagingTimeout(300ms);
  const auto element = std::move(application->windows(5).at(0));
  const auto children = element->children(100);
  host.system.hangs = true;
  const auto start = host.clock.uptime();
  EXPECT_EQ(children.at(99)->title(), std::nullopt);
  EXPECT_NEAR((host.clock.uptime() - start).count(), 0.3, 0.001) << "each reference has a time-out of its own";
}

TEST_F(AxAccessibilityTest, TreeThatIsItsOwnChildIsBounded) {
  host.show({{.title = "Claude"}});
  auto& window = *host.system.windows[0];
  window.children = {&window, &window};
  EXPECT_EQ(message(), "Desktop fallback: leave Claude → Settings → Usage open, then refresh.");
  EXPECT_LT(host.system.calls, 4 * 1500 + 10);
}

}  // namespace
}  // namespace nimbo
