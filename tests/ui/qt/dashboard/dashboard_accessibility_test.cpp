// SPDX-License-Identifier: MIT
#include <QAccessible>
#include <QTabBar>

#include "ui/qt/qt_test.h"

namespace nimbo {
namespace {

class DashboardAccessibility : public DashboardTest {
 protected:
  void SetUp() override {
    DashboardTest::SetUp();
    open();
  }
  static QAccessibleInterface& accessible(QWidget& widget) { return *QAccessible::queryAccessibleInterface(&widget); }
  static QAccessibleInterface& accessible(const char* name) { return accessible(child(name)); }
  static std::string nameOf(QAccessibleInterface& interface) { return interface.text(QAccessible::Name).toStdString(); }
};

TEST_F(DashboardAccessibility, WindowIsNamedAfterTheProgram) { EXPECT_EQ(nameOf(accessible(widget())), "Nimbo"); }

TEST_F(DashboardAccessibility, ButtonsHaveRoleNameAndDescription) {
  const std::map<const char*, std::string> names{{"settings", "Settings"},
                                                 {"less", "Show less"},
                                                 {"more", "Show more"},
                                                 {"activity", "Activity Monitor"},
                                                 {"quit", "Quit Nimbo"}};
  for (const auto& [name, expected] : names) {
    EXPECT_EQ(accessible(name).role(), QAccessible::Button) << name;
    EXPECT_EQ(nameOf(accessible(name)), expected);
    EXPECT_TRUE(accessible(name).state().focusable) << name;
  }
  EXPECT_EQ(accessible("settings").text(QAccessible::Description), "Settings: monitors, display, refresh interval");
}

TEST_F(DashboardAccessibility, ButtonsCanBePressedByAssistiveTechnology) {
  auto* const actions = accessible("less").actionInterface();
  ASSERT_NE(actions, nullptr);
  actions->doAction(QAccessibleActionInterface::pressAction());
  ASSERT_TRUE(QTest::qWaitFor([this] { return !log_.empty(); }));
  EXPECT_EQ(log_, std::vector<std::string>{"less"});
}

TEST_F(DashboardAccessibility, TabsAreAListOfPageTabsWithOneCurrent) {
  auto& tabs = accessible("tabs");
  EXPECT_EQ(tabs.role(), QAccessible::PageTabList);
  std::vector<std::string> names;
  for (int index = 0; index < child<QTabBar>("tabs").count(); ++index) {
    auto* const tab = tabs.child(index);
    EXPECT_EQ(tab->role(), QAccessible::PageTab);
    // The toolkit's way of telling which tab is the current one.
    EXPECT_EQ(tab->state().focused, index == 1) << index;
    names.push_back(nameOf(*tab));
  }
  EXPECT_EQ(names, (std::vector<std::string>{"AI", "Mem", "Awake"}));
}

TEST_F(DashboardAccessibility, LabelsAreStaticTextWithTheWholeText) {
  EXPECT_EQ(accessible("subtitle").role(), QAccessible::StaticText);
  EXPECT_EQ(nameOf(accessible("subtitle")), "11.2 GB of 16.0 GB used");
}

TEST_F(DashboardAccessibility, HistoryIsAChartThatReadsAsItsNewestSample) {
  auto& history = accessible("history");
  EXPECT_EQ(history.role(), QAccessible::Chart);
  EXPECT_EQ(nameOf(history), "Memory history");
  EXPECT_EQ(history.text(QAccessible::Description), "70%");
  ASSERT_NE(history.valueInterface(), nullptr);
  EXPECT_NEAR(history.valueInterface()->currentValue().toDouble(), 70, 0.01);
  EXPECT_EQ(history.valueInterface()->maximumValue().toDouble(), 100);
}

TEST_F(DashboardAccessibility, BreakdownReadsAsItsParts) {
  auto& breakdown = accessible("breakdown");
  EXPECT_EQ(breakdown.role(), QAccessible::Chart);
  EXPECT_EQ(nameOf(breakdown), "Memory breakdown");
  EXPECT_EQ(breakdown.text(QAccessible::Value), "App memory 46%, wired 14%, compressed 9%");
}

TEST_F(DashboardAccessibility, ProcessListIsNamedByItsHeading) {
  EXPECT_EQ(nameOf(accessible("processes")), "TOP 13 PROCESSES");
}

TEST_F(DashboardAccessibility, ProcessListKeepsTheChildrenThatWereCountedWhenTheWindowCloses) {
  auto& list = accessible("processes");
  const int counted = list.childCount();
  EXPECT_GT(counted, 1) << "the viewport and a bar";
  window_->hide();
  EXPECT_EQ(list.childCount(), counted);
  EXPECT_TRUE(list.child(counted - 1)->state().invisible);
  EXPECT_EQ(list.child(counted), nullptr);
}

TEST_F(DashboardAccessibility, EveryFocusableControlHasAName) {
  int controls = 0;
  for (QWidget* const each : widget().findChildren<QWidget*>()) {
    if (!each->isVisible() || !(each->focusPolicy() & Qt::TabFocus)) continue;
    ++controls;
    EXPECT_NE(nameOf(accessible(*each)), "") << each->objectName().toStdString();
  }
  EXPECT_EQ(controls, 7);
}

}  // namespace
}  // namespace nimbo
