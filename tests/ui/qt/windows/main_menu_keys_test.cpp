// SPDX-License-Identifier: MIT
#include <QDialog>

#include "ui/qt/settings/settings_window_fixture.h"

namespace nimbo {
namespace {

using Log = std::vector<std::string>;

class MainMenuKeysInWindows : public SettingsWindowTest {
 protected:
  void SetUp() override {
    SettingsWindowTest::SetUp();
    interface().setMenuListener(
        [this](MenuRole chosen) { log_.push_back(chosen == MenuRole::quit ? "quit" : "settings"); });
  }
  static QDialog& alert() { return *qobject_cast<QDialog*>(&topLevel("alert")); }
};

TEST_F(MainMenuKeysInWindows, SettingsAndQuitWorkWhateverHasTheFocus) {
  open();
  press(Qt::Key_Comma, Qt::ControlModifier);
  for (const char* const name : {"tabs", "preset", "login", "checkUpdates"}) {
    child(name).setFocus(Qt::TabFocusReason);
    press(Qt::Key_Q, Qt::ControlModifier);
  }
  EXPECT_EQ(log_, (Log{"settings", "quit", "quit", "quit", "quit"}));
}

TEST_F(MainMenuKeysInWindows, OtherModifiersOrNoneDoNothing) {
  open();
  press(Qt::Key_Q);
  press(Qt::Key_Q, Qt::ControlModifier | Qt::ShiftModifier);
  press(Qt::Key_Q, Qt::AltModifier);
  press(Qt::Key_W);
  EXPECT_EQ(log_, Log{});
  EXPECT_TRUE(window_->visible());
}

TEST_F(MainMenuKeysInWindows, CloseWindowClosesTheWindowInFront) {
  open();
  press(Qt::Key_W, Qt::ControlModifier);
  EXPECT_FALSE(window_->visible());
  EXPECT_EQ(log_, Log{});
}

TEST_F(MainMenuKeysInWindows, EditingKeysAreLeftToTheControls) {
  open();
  child("login").setFocus(Qt::TabFocusReason);
  for (const auto key : {Qt::Key_X, Qt::Key_C, Qt::Key_V, Qt::Key_A}) press(key, Qt::ControlModifier);
  EXPECT_EQ(log_, Log{});
  EXPECT_TRUE(window_->visible());
}

TEST_F(MainMenuKeysInWindows, AnotherListenerTakesTheirPlaceAndMayGoFromWithin) {
  open();
  interface().setMenuListener([this](MenuRole /*chosen*/) {
    log_.push_back("other");
    interface().setMenuListener({});
  });
  press(Qt::Key_Q, Qt::ControlModifier);
  press(Qt::Key_Q, Qt::ControlModifier);
  EXPECT_EQ(log_, Log{"other"});
}

TEST_F(MainMenuKeysInWindows, KeysRestWhileAListIsOpen) {
  open();
  popUp("preset").showPopup();
  auto* const list = QApplication::activePopupWidget();
  ASSERT_NE(list, nullptr);
  QTest::keyClick(list->windowHandle(), Qt::Key_Q, Qt::ControlModifier);
  QTest::keyClick(list->windowHandle(), Qt::Key_W, Qt::ControlModifier);
  EXPECT_EQ(log_, Log{});
  EXPECT_TRUE(window_->visible());
}

TEST_F(MainMenuKeysInWindows, HiddenWindowHearsNothing) {
  open();
  auto* const handle = widget().windowHandle();
  window_->hide();
  QTest::keyClick(handle, Qt::Key_Q, Qt::ControlModifier);
  EXPECT_EQ(log_, Log{});
}

TEST_F(MainMenuKeysInWindows, AlertsHaveThemTooAndClosingOneAnswersIt) {
  Log answers;
  const auto shown = interface().showAlert(
      {"Title", "Text.", {"Keep Running", "End"}},
      [&](std::optional<std::size_t> index) { answers.push_back(std::to_string(index.value())); });
  ASSERT_TRUE(QTest::qWaitForWindowActive(&alert()));
  QTest::keyClick(alert().windowHandle(), Qt::Key_Comma, Qt::ControlModifier);
  QTest::keyClick(alert().windowHandle(), Qt::Key_Q, Qt::ControlModifier);
  EXPECT_EQ(log_, (Log{"settings", "quit"}));
  QTest::keyClick(alert().windowHandle(), Qt::Key_W, Qt::ControlModifier);
  ASSERT_TRUE(QTest::qWaitFor([&] { return !answers.empty(); }));
  EXPECT_EQ(answers, Log{"0"});
  EXPECT_FALSE(alert().isVisible());
}

using MainMenuKeysInDashboard = DashboardTest;

TEST_F(MainMenuKeysInDashboard, SettingsAndQuitWorkAndCloseWindowIsLikeEscape) {
  open();
  window_->setEvents({.escapePressed = [this] { log_.push_back("close"); },
                      .clickedOutside = {},
                      .otherApplicationActivated = {},
                      .closeRequested = {}});
  press(Qt::Key_Q, Qt::ControlModifier);
  press(Qt::Key_Comma, Qt::ControlModifier);
  press(Qt::Key_W, Qt::ControlModifier);
  EXPECT_EQ(log_, (Log{"quit", "settings", "close"}));
}

}  // namespace
}  // namespace nimbo
