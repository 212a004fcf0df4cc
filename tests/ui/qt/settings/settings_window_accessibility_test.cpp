// SPDX-License-Identifier: MIT
#include <QAccessible>

#include "settings_window_fixture.h"

namespace nimbo {
namespace {

class SettingsWindowAccessibility : public SettingsWindowTest {
 protected:
  void SetUp() override {
    SettingsWindowTest::SetUp();
    open();
  }
  static QAccessibleInterface& accessible(QObject& object) { return *QAccessible::queryAccessibleInterface(&object); }
  static QAccessibleInterface& accessible(const char* name) { return accessible(child(name)); }
  static std::string nameOf(QAccessibleInterface& interface) { return interface.text(QAccessible::Name).toStdString(); }

  /// How often the program lists the window among its own.
  static int listings() {
    auto& program = accessible(*qApp);
    int found = 0;
    for (int index = 0; index < program.childCount(); ++index) found += program.child(index)->object() == &widget();
    return found;
  }
  /// Below `from`, whatever scrolls them.
  static std::vector<QAccessibleInterface*> pages(QAccessibleInterface& from = accessible(widget())) {
    std::vector<QAccessibleInterface*> result;
    for (int index = 0; index < from.childCount(); ++index) {
      auto& child = *from.child(index);
      const auto found = child.role() == QAccessible::Grouping ? std::vector{&child} : pages(child);
      result.insert(result.end(), found.begin(), found.end());
    }
    return result;
  }
};

TEST_F(SettingsWindowAccessibility, IsFoundExactlyOnceAmongTheProgramsWindows) {
  EXPECT_EQ(listings(), 1);
  window_->hide();
  EXPECT_EQ(listings(), 1);
  EXPECT_TRUE(accessible(widget()).state().invisible);
  open();
  EXPECT_EQ(listings(), 1);
  EXPECT_EQ(accessible(widget()).parent(), &accessible(*qApp));
}

TEST_F(SettingsWindowAccessibility, IsAWindowNamedByItsTitle) {
  EXPECT_EQ(accessible(widget()).role(), QAccessible::Window);
  EXPECT_EQ(nameOf(accessible(widget())), "Nimbo Settings");
  EXPECT_TRUE(accessible(widget()).state().active);
}

TEST_F(SettingsWindowAccessibility, PagesAreGroupsNamedByTheirTabsAndOneCanBeSeen) {
  const auto before = pages();
  ASSERT_EQ(before.size(), 2U);
  EXPECT_EQ(nameOf(*before[0]), "General");
  EXPECT_EQ(nameOf(*before[1]), "Monitors");
  EXPECT_FALSE(before[0]->state().invisible);
  EXPECT_TRUE(before[1]->state().invisible);
  EXPECT_TRUE(accessible("memory").state().invisible);
  showMonitors();
  EXPECT_TRUE(pages()[0]->state().invisible);
  EXPECT_FALSE(accessible("memory").state().invisible);
}

TEST_F(SettingsWindowAccessibility, ControlsOfAPageComeInItsOrder) {
  std::vector<std::string> names;
  auto& page = *pages()[0];
  for (int index = 0; index < page.childCount(); ++index) names.push_back(nameOf(*page.child(index)));
  EXPECT_EQ(names, (std::vector<std::string>{"General", "Show", "Show", "AI", "Launch at login", "One.\nTwo.\nThree.",
                                             "Check for Updates…"}));
}

}  // namespace
}  // namespace nimbo
