// SPDX-License-Identifier: MIT
#include "ui/qt/windows/main_menu_keys.h"

#include <QClipboard>
#include <QDateEdit>
#include <QDialog>
#include <QLineEdit>

#include "ui/qt/settings/settings_window_fixture.h"
#include "ui/qt/windows/window_system.h"

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

/// Has a bar for the menu of the application in front.
class BarWindowSystem final : public WindowSystem {
 public:
  [[nodiscard]] bool compositing() const override { return true; }
  [[nodiscard]] bool popupsHearAllClicks() const override { return false; }
  [[nodiscard]] bool inputIsFree() override { return true; }
  void hang(QWidget& /*window*/, const QRect& /*frame*/, const Hanging& /*hanging*/) override {}
  void activate(QWidget& /*window*/) override {}
  [[nodiscard]] Subscription observeOtherActivation(std::function<void()> /*activated*/) override { return {}; }
  [[nodiscard]] bool showMenu(const MenuListener& chosen) override {
    choose = chosen;
    return true;
  }

  MenuListener choose;
};

/// An ordinary window with two fields, the first of which has the keyboard focus.
class MainMenuInBar : public QtTest {
 protected:
  void SetUp() override {
    menu_.setListener([this](MenuRole chosen) { log_.push_back(chosen == MenuRole::quit ? "quit" : "settings"); });
    menu_.showIn(bar_);
    menu_.serve(window_);
    date_.setDate({2026, 3, 14});
    date_.setDisplayFormat("yyyy-MM-dd");
    date_.move(0, 50);
    window_.show();
    field_.setFocus();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window_));
    QGuiApplication::clipboard()->setText("before");
  }

  [[nodiscard]] static QString copied() { return QGuiApplication::clipboard()->text(); }

  BarWindowSystem bar_;
  MainMenuKeys menu_;
  Log log_;
  QWidget window_;
  QLineEdit field_{"seven", &window_};
  QDateEdit date_{&window_};
};

TEST_F(MainMenuInBar, SettingsAndQuitGoToTheListener) {
  bar_.choose(MenuRole::openSettings);
  bar_.choose(MenuRole::quit);
  bar_.choose(MenuRole::separator);
  EXPECT_EQ(log_, (Log{"settings", "quit"}));
}

TEST_F(MainMenuInBar, WindowsHaveNoKeysOfTheirOwn) {
  QTest::keyClick(window_.windowHandle(), Qt::Key_Q, Qt::ControlModifier);
  QTest::keyClick(window_.windowHandle(), Qt::Key_W, Qt::ControlModifier);
  EXPECT_EQ(log_, Log{});
  EXPECT_TRUE(window_.isVisible());
}

TEST_F(MainMenuInBar, FieldWithTheFocusIsEdited) {
  QStringList edited;
  QObject::connect(&field_, &QLineEdit::textEdited, &field_, [&](const QString& text) { edited.push_back(text); });
  bar_.choose(MenuRole::selectAll);
  bar_.choose(MenuRole::copy);
  EXPECT_EQ(copied(), "seven");
  bar_.choose(MenuRole::cut);
  EXPECT_EQ(field_.text(), "");
  bar_.choose(MenuRole::paste);
  bar_.choose(MenuRole::paste);
  EXPECT_EQ(field_.text(), "sevenseven");
  EXPECT_EQ(edited, (QStringList{"", "seven", "sevenseven"}));
}

TEST_F(MainMenuInBar, DateWithTheFocusIsEditedToo) {
  date_.setFocus();
  bar_.choose(MenuRole::selectAll);
  bar_.choose(MenuRole::copy);
  EXPECT_EQ(copied(), "2026-03-14");
  QGuiApplication::clipboard()->setText("2027-05-01");
  bar_.choose(MenuRole::paste);
  EXPECT_EQ(date_.date(), QDate(2027, 5, 1));
  EXPECT_EQ(field_.text(), "seven");
}

TEST_F(MainMenuInBar, WithoutAFieldNothingIsEdited) {
  const auto editAll = [this] {
    for (const auto role : {MenuRole::selectAll, MenuRole::cut, MenuRole::copy, MenuRole::paste}) bar_.choose(role);
  };
  window_.setFocus();
  ASSERT_EQ(QApplication::focusWidget(), &window_);
  editAll();
  window_.hide();
  editAll();
  EXPECT_EQ(copied(), "before");
  EXPECT_EQ(field_.text(), "seven");
}

TEST_F(MainMenuInBar, CloseWindowClosesTheOneInFront) {
  bar_.choose(MenuRole::closeWindow);
  EXPECT_FALSE(window_.isVisible());
  bar_.choose(MenuRole::closeWindow);
}

}  // namespace
}  // namespace nimbo
