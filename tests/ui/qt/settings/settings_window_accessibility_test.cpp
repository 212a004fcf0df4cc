// SPDX-License-Identifier: MIT
#include <QAbstractItemView>
#include <QAccessible>
#include <QTabBar>

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
  static std::vector<QAccessibleInterface*> pages() {
    std::vector<QAccessibleInterface*> result;
    auto& window = accessible(widget());
    for (int index = 0; index < window.childCount(); ++index) {
      if (window.child(index)->role() == QAccessible::Grouping) result.push_back(window.child(index));
    }
    return result;
  }
};

TEST_F(SettingsWindowAccessibility, IsFoundExactlyOnceAmongTheProgramsWindows) {
  EXPECT_EQ(listings(), 1);
  window_->close();
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

TEST_F(SettingsWindowAccessibility, TabsAreAListOfPageTabsWithOneCurrent) {
  auto& tabs = accessible("tabs");
  EXPECT_EQ(tabs.role(), QAccessible::PageTabList);
  std::vector<std::string> names;
  for (int index = 0; index < 2; ++index) {
    EXPECT_EQ(tabs.child(index)->role(), QAccessible::PageTab);
    EXPECT_EQ(tabs.child(index)->state().focused, index == 0);
    names.push_back(nameOf(*tabs.child(index)));
  }
  EXPECT_EQ(names, (std::vector<std::string>{"General", "Monitors"}));
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

TEST_F(SettingsWindowAccessibility, CheckBoxesTellTheirStateAndCanBeSwitched) {
  auto& box = accessible("menuAI");
  EXPECT_EQ(box.role(), QAccessible::CheckBox);
  EXPECT_TRUE(box.state().checkable);
  EXPECT_TRUE(box.state().checked);
  EXPECT_FALSE(accessible("login").state().checked);
  box.actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
  EXPECT_EQ(log_, std::vector<std::string>{"menuAI off"});
}

TEST_F(SettingsWindowAccessibility, PopUpsAreComboBoxesWithNameValueAndList) {
  auto& popUpInterface = accessible("preset");
  EXPECT_EQ(popUpInterface.role(), QAccessible::ComboBox);
  EXPECT_EQ(nameOf(popUpInterface), "Show");
  EXPECT_EQ(popUpInterface.text(QAccessible::Value), "All");
  popUpInterface.actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  EXPECT_TRUE(popUpInterface.state().expanded);
  auto* const list = popUpInterface.child(0);
  EXPECT_EQ(list->role(), QAccessible::List);
  ASSERT_EQ(list->childCount(), 3);
  EXPECT_EQ(nameOf(*list->child(2)), "Mem only");
}

TEST_F(SettingsWindowAccessibility, ButtonsCanBePressed) {
  EXPECT_EQ(accessible("checkUpdates").role(), QAccessible::Button);
  accessible("checkUpdates").actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  ASSERT_TRUE(QTest::qWaitFor([this] { return !log_.empty(); }));
  EXPECT_EQ(log_, std::vector<std::string>{"checkUpdates"});
}

TEST_F(SettingsWindowAccessibility, NotesAreStaticTextWithAllTheirLines) {
  auto& note = *pages()[0]->child(5);
  EXPECT_EQ(note.role(), QAccessible::StaticText);
  EXPECT_EQ(nameOf(note), "One.\nTwo.\nThree.");
}

}  // namespace
}  // namespace nimbo
