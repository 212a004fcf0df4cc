// SPDX-License-Identifier: MIT
#include <QAccessible>

#include "usage/usage_messages.h"
#include "usage_page_fixture.h"

namespace nimbo {
namespace {

class UsagePageAccessibility : public UsagePageTest {
 protected:
  static QAccessibleInterface& accessible(QWidget& widget) { return *QAccessible::queryAccessibleInterface(&widget); }
  static QAccessibleInterface& accessible(const char* name) { return accessible(child(name)); }
  static std::string textOf(QAccessibleInterface& interface, QAccessible::Text kind) {
    return interface.text(kind).toStdString();
  }
};

TEST_F(UsagePageAccessibility, CardIsAGroupNamedAfterItsProvider) {
  auto& group = accessible(card(kClaude));
  EXPECT_EQ(group.role(), QAccessible::Grouping);
  EXPECT_EQ(textOf(group, QAccessible::Name), "Anthropic · Claude");
  EXPECT_GE(group.indexOfChild(&accessible("link.claude")), 0);
}

TEST_F(UsagePageAccessibility, BarIsAProgressBarThatTellsWhatIsLeft) {
  auto& progress = accessible(bar(kCodex, 0));
  EXPECT_EQ(progress.role(), QAccessible::ProgressBar);
  EXPECT_EQ(textOf(progress, QAccessible::Name), "Codex 5-hour");
  EXPECT_EQ(textOf(progress, QAccessible::Value), "62 percent remaining");
  EXPECT_EQ(textOf(progress, QAccessible::Description), "62 percent remaining");
  ASSERT_NE(progress.valueInterface(), nullptr);
  EXPECT_NEAR(progress.valueInterface()->currentValue().toDouble(), 62, 1e-9);
  EXPECT_EQ(progress.valueInterface()->minimumValue().toDouble(), 0);
  EXPECT_EQ(progress.valueInterface()->maximumValue().toDouble(), 100);
}

TEST_F(UsagePageAccessibility, LinksHaveANameOfTheirOwn) {
  EXPECT_EQ(accessible("link.codex").role(), QAccessible::Button);
  EXPECT_EQ(textOf(accessible("link.codex"), QAccessible::Name), "Open Codex usage dashboard");
  EXPECT_EQ(textOf(accessible("link.claude"), QAccessible::Name), "Open Claude usage dashboard");
  EXPECT_EQ(textOf(accessible("refresh"), QAccessible::Description),
            "Read the latest limits and reset times. Claude Code is checked first, then Claude Desktop.");
}

TEST_F(UsagePageAccessibility, LinkCanBePressedByAssistiveTechnology) {
  auto* const actions = accessible("link.claude").actionInterface();
  ASSERT_NE(actions, nullptr);
  actions->doAction(QAccessibleActionInterface::pressAction());
  ASSERT_TRUE(QTest::qWaitFor([this] { return !log_.empty(); }));
  EXPECT_EQ(log_, std::vector<std::string>{"link.claude"});
}

TEST_F(UsagePageAccessibility, LabelsAreStaticTextAndTellTheRestAsDescription) {
  showCodex(failedState(usage_messages::kNoCodexCredentials));
  auto& message = accessible(part<QLabel>(card(kCodex), "usageCardStatus"));
  EXPECT_EQ(message.role(), QAccessible::StaticText);
  EXPECT_EQ(textOf(message, QAccessible::Name), usage_messages::kNoCodexCredentials);
  auto& amount = accessible(part<QLabel>(*rows(kClaude)[0], "usageRowAmount"));
  EXPECT_EQ(textOf(amount, QAccessible::Name), "88% left");
  EXPECT_EQ(textOf(amount, QAccessible::Description),
            "Session · 88% left · Resets in 49m\nResets Mar 14, 2026 10:15\nUpdated 09:24 · Claude Code");
}

TEST_F(UsagePageAccessibility, EveryFocusableControlHasAName) {
  for (const auto& [states, expected] : {std::pair{sampleUsage(now()), 8}, std::pair{UsageStates(), 9}}) {
    show(states);
    int controls = 0;
    for (QWidget* const each : widget().findChildren<QWidget*>()) {
      if (!each->isVisible() || !(each->focusPolicy() & Qt::TabFocus)) continue;
      ++controls;
      EXPECT_NE(textOf(accessible(*each), QAccessible::Name), "") << each->objectName().toStdString();
    }
    EXPECT_EQ(controls, expected);
  }
}

}  // namespace
}  // namespace nimbo
