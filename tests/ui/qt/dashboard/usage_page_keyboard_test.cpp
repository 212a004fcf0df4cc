// SPDX-License-Identifier: MIT
#include <QScrollBar>

#include "usage_page_fixture.h"

namespace nimbo {
namespace {

using Log = std::vector<std::string>;

class UsagePageKeyboard : public UsagePageTest {
 protected:
  static QScrollBar& scrollBar() { return *child<ScrollArea>("usage").verticalScrollBar(); }
  static void focus(const char* name) { child(name).setFocus(Qt::TabFocusReason); }
  static bool inSight(const char* name) {
    const QWidget& control = child(name);
    return control.visibleRegion().boundingRect() == control.rect();
  }
};

TEST_F(UsagePageKeyboard, TabVisitsTheControlsInTheOrderOfThePage) {
  EXPECT_EQ(tabStops(8),
            (Log{"tabs", "settings", "usage", "link.codex", "link.claude", "refresh", "configure", "quit"}));
  press(Qt::Key_Backtab, Qt::ShiftModifier);
  EXPECT_EQ(focused(), "configure");
}

TEST_F(UsagePageKeyboard, CardsThatFitAreNoStopOfTheirOwn) {
  show({});
  EXPECT_EQ(tabStops(8), (Log{"tabs", "settings", "link.codex", "connect.codex", "link.claude", "connect.claude",
                              "configure", "quit"}));
}

TEST_F(UsagePageKeyboard, SpaceAndReturnPressTheFocusedButton) {
  focus("link.claude");
  press(Qt::Key_Space);
  press(Qt::Key_Return);
  focus("refresh");
  press(Qt::Key_Return);
  EXPECT_EQ(log_, (Log{"link.claude", "link.claude", "refresh"}));
}

TEST_F(UsagePageKeyboard, ArrowAndPageKeysScroll) {
  focus("usage");
  press(Qt::Key_Down);
  EXPECT_EQ(scrollBar().value(), 29);
  press(Qt::Key_PageDown);
  EXPECT_EQ(scrollBar().value(), scrollBar().maximum());
  EXPECT_EQ(scrollBar().maximum(), 436 - 371);
  press(Qt::Key_Up);
  EXPECT_EQ(scrollBar().value(), scrollBar().maximum() - 29);
}

TEST_F(UsagePageKeyboard, PageKeysScrollFromAControlInACardToo) {
  focus("link.codex");
  press(Qt::Key_PageDown);
  EXPECT_EQ(scrollBar().value(), scrollBar().maximum());
  EXPECT_EQ(focused(), "link.codex");
}

TEST_F(UsagePageKeyboard, FocusBringsItsControlIntoSight) {
  auto states = sampleUsage(now());
  states[UsageProvider::codex] = connectedState(
      {sampleWindow("a", 1), sampleWindow("b", 2), sampleWindow("c", 3), sampleWindow("d", 4), sampleWindow("e", 5)},
      now());
  show(states);
  ASSERT_FALSE(inSight("link.claude"));
  focus("link.codex");
  press(Qt::Key_Tab);
  EXPECT_TRUE(inSight("link.claude"));
  EXPECT_FALSE(inSight("link.codex"));
  focus("refresh");
  press(Qt::Key_Backtab, Qt::ShiftModifier);
  press(Qt::Key_Backtab, Qt::ShiftModifier);
  EXPECT_TRUE(inSight("link.codex"));
  ASSERT_FALSE(inSight("link.claude"));
  focus("refresh");
  press(Qt::Key_Backtab, Qt::ShiftModifier);
  EXPECT_TRUE(inSight("link.claude"));
}

TEST_F(UsagePageKeyboard, PressWithThePointerScrollsNothing) {
  scrollBar().setValue(20);  // the link's upper edge is out of sight
  ASSERT_FALSE(inSight("link.codex"));
  click("link.codex");
  EXPECT_EQ(scrollBar().value(), 20);
  EXPECT_EQ(log_, Log{"link.codex"});
}

TEST_F(UsagePageKeyboard, FocusReachedByKeyboardIsMarked) {
  for (const char* const name : {"usage", "link.codex", "refresh", "configure"}) {
    QWidget& control = child(name);
    // The ring of what scrolls stands beside it.
    const QRect frame = QRect(control.mapTo(&widget(), QPoint()), control.size()).adjusted(-8, -6, 8, 6);
    control.setFocus(Qt::OtherFocusReason);
    widget().setAttribute(Qt::WA_KeyboardFocusChange, false);
    const QImage before = widget().grab(frame).toImage();
    widget().setAttribute(Qt::WA_KeyboardFocusChange);
    EXPECT_NE(widget().grab(frame).toImage(), before) << name;
  }
}

TEST_F(UsagePageKeyboard, FocusSurvivesARefresh) {
  for (const char* const name : {"usage", "link.claude", "refresh"}) {
    focus(name);
    auto states = sampleUsage(now());
    for (auto& [provider, state] : states) state.isRefreshing = true;
    show(states);
    states[UsageProvider::codex] = connectedState({sampleWindow("Weekly", 99)}, now());
    show(states);
    show(sampleUsage(now()));
    EXPECT_EQ(focused(), name);
  }
}

TEST_F(UsagePageKeyboard, FocusFollowsACardToItsNewPlace) {
  focus("link.claude");
  showClaudeFirst();
  EXPECT_EQ(focused(), "link.claude");
  press(Qt::Key_Tab);
  EXPECT_EQ(focused(), "link.codex");
}

TEST_F(UsagePageKeyboard, FocusStaysInTheCardWhoseButtonGoes) {
  show({});
  focus("connect.codex");
  show({{UsageProvider::codex, {true, {}, {}, true}}});
  EXPECT_EQ(focused(), "link.codex");
}

}  // namespace
}  // namespace nimbo
