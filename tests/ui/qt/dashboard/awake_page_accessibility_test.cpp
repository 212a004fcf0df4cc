// SPDX-License-Identifier: MIT
#include <QAbstractItemView>
#include <QAccessible>

#include "awake_page_fixture.h"

namespace nimbo {
namespace {

class AwakePageAccessibility : public AwakePageTest {
 protected:
  static QAccessibleInterface& accessible(const char* name) {
    return *QAccessible::queryAccessibleInterface(&child(name));
  }
  static std::string nameOf(const char* name) { return accessible(name).text(QAccessible::Name).toStdString(); }
  static std::string valueOf(const char* name) { return accessible(name).text(QAccessible::Value).toStdString(); }
};

TEST_F(AwakePageAccessibility, ControlsHaveRoleAndName) {
  choose("Custom minutes…");
  EXPECT_EQ(accessible("duration").role(), QAccessible::ComboBox);
  EXPECT_EQ(nameOf("duration"), "Session");
  EXPECT_EQ(accessible("battery").role(), QAccessible::ComboBox);
  EXPECT_EQ(nameOf("battery"), "Stop on battery at");
  EXPECT_EQ(accessible("display").role(), QAccessible::CheckBox);
  EXPECT_EQ(nameOf("display"), "Keep display on too");
  EXPECT_EQ(nameOf("plugged"), "Only while connected to power");
  EXPECT_EQ(accessible("minutes").role(), QAccessible::EditableText);
  EXPECT_EQ(nameOf("minutes"), "Custom duration in minutes");
  EXPECT_EQ(accessible("date").role(), QAccessible::SpinBox);
  EXPECT_EQ(nameOf("date"), "Session end date and time");
}

TEST_F(AwakePageAccessibility, ToolTipsAreDescriptions) {
  EXPECT_EQ(accessible("display").text(QAccessible::Description),
            "Off by default: the display may sleep while the Mac stays awake.");
  EXPECT_EQ(accessible("minutes").text(QAccessible::Description), "Custom session length in minutes (up to 7 days)");
}

TEST_F(AwakePageAccessibility, LabelsAreStaticTextWithTheWholeText) {
  EXPECT_EQ(accessible("awakeNote").role(), QAccessible::StaticText);
  EXPECT_EQ(nameOf("awakeNote"),
            "Keep your MacBook’s lid open. Manual Sleep still applies. App-specific background limits still apply.");
}

TEST_F(AwakePageAccessibility, ValuesAreWhatIsShown) {
  choose("Until a date / time…");
  EXPECT_EQ(valueOf("duration"), "Until a date / time…");
  EXPECT_EQ(valueOf("battery"), "20%");
  EXPECT_EQ(valueOf("date"), child<QLineEdit>("qt_spinbox_lineedit").text().toStdString());
  EXPECT_FALSE(accessible("display").state().checked);
  button("display").click();
  EXPECT_TRUE(accessible("display").state().checked);
  EXPECT_TRUE(accessible("display").state().checkable);
}

TEST_F(AwakePageAccessibility, DisabledControlsSaySo) {
  EXPECT_FALSE(accessible("duration").state().disabled);
  click("start");
  EXPECT_TRUE(accessible("duration").state().disabled);
}

TEST_F(AwakePageAccessibility, CheckBoxCanBeSwitched) {
  auto* const actions = accessible("plugged").actionInterface();
  ASSERT_NE(actions, nullptr);
  ASSERT_TRUE(actions->actionNames().contains(QAccessibleActionInterface::toggleAction()));
  actions->doAction(QAccessibleActionInterface::toggleAction());
  EXPECT_EQ(log_, std::vector<std::string>{"plugged on"});
}

TEST_F(AwakePageAccessibility, TextCanBeSet) {
  choose("Custom minutes…");
  auto* const editing = accessible("minutes").editableTextInterface();
  ASSERT_NE(editing, nullptr);
  editing->replaceText(0, static_cast<int>(minutes().text().size()), "90");
  EXPECT_EQ(log_, std::vector<std::string>{"minutes 90"});
}

TEST_F(AwakePageAccessibility, PopUpOpensAndClosesItsListOfItems) {
  auto& popUpInterface = accessible("battery");
  EXPECT_TRUE(popUpInterface.state().hasPopup);
  EXPECT_TRUE(popUpInterface.state().collapsed);
  auto* const actions = popUpInterface.actionInterface();
  ASSERT_NE(actions, nullptr);
  actions->doAction(QAccessibleActionInterface::pressAction());
  EXPECT_TRUE(popUpInterface.state().expanded);
  ASSERT_EQ(popUpInterface.childCount(), 1);
  auto* const list = popUpInterface.child(0);
  EXPECT_EQ(list->role(), QAccessible::List);
  ASSERT_EQ(list->childCount(), 5);
  EXPECT_EQ(list->child(4)->text(QAccessible::Name), "50%");
  EXPECT_EQ(popUpInterface.indexOfChild(list), 0);
  actions->doAction(QAccessibleActionInterface::showMenuAction());
  EXPECT_TRUE(popUpInterface.state().collapsed);
}

TEST_F(AwakePageAccessibility, DisabledPopUpStaysClosed) {
  click("start");
  accessible("duration").actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  EXPECT_TRUE(accessible("duration").state().collapsed);
}

TEST_F(AwakePageAccessibility, EveryFocusableControlHasAName) {
  for (const char* const item : {"Custom minutes…", "Until a date / time…"}) {
    choose(item);
    int controls = 0;
    for (QWidget* const each : widget().findChildren<QWidget*>()) {
      if (!each->isVisible() || each->window() != &widget() || !(each->focusPolicy() & Qt::TabFocus)) continue;
      if (each->focusProxy() != nullptr || each->objectName() == "qt_spinbox_lineedit") continue;
      ++controls;
      EXPECT_NE(QAccessible::queryAccessibleInterface(each)->text(QAccessible::Name), "")
          << each->objectName().toStdString();
    }
    EXPECT_EQ(controls, 11) << item;
  }
}

}  // namespace
}  // namespace nimbo
