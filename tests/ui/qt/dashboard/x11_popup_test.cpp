// SPDX-License-Identifier: MIT
// Lists and menus that controls of the dashboard open, and alerts, with a real server's grabs and focus.
#include <QAbstractItemView>
#include <QComboBox>
#include <QDialog>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>

#include "ui/qt/windows/x11_window_fixture.h"

namespace nimbo {
namespace {

class X11Popup : public X11WindowTest {
 protected:
  void openAwakePage() {
    start();
    controller_.open(DashboardTab::awake);
    controller_.onContentChanged = [this] { window_->render(controller_.content()); };
    world_.connect(controller_);
    window_->setListener([this](const ControlEvent& event) {
      quits_ += event == pressed("quit");
      controller_.handle(event);
    });
    window_->render(controller_.content());
    window_->setFrame({100, 50, controller_.content().size.width, controller_.content().size.height});
    window_->show();
    ASSERT_TRUE(eventually([] { return widget().windowHandle()->isExposed(); }));
  }
  /// In a Wayland session, with the focus that its compositor would give.
  void openAwakePageAsTool() {
    qputenv("WAYLAND_DISPLAY", "wayland-0");
    openAwakePage();
    ASSERT_EQ(widget().windowType(), Qt::Tool);
    client_.focus(static_cast<xcb_window_t>(widget().winId()));
    ASSERT_TRUE(eventually([] { return widget().isActiveWindow(); }));
  }

  template <class Child = QWidget>
  static Child& child(const char* name) {
    if (auto* const found = widget().findChild<Child*>(name)) return *found;
    throw std::logic_error(name);
  }
  void clickAt(QPoint place, std::uint8_t button = X11Client::kLeftButton) {
    client_.click(static_cast<std::int16_t>(place.x()), static_cast<std::int16_t>(place.y()), button);
  }
  void clickOn(const QWidget& target, std::uint8_t button = X11Client::kLeftButton) {
    clickAt(target.mapToGlobal(target.rect().center()), button);
  }
  void typeControl(std::uint8_t key) {
    client_.pressKey(X11Client::kControl);
    client_.typeKey(key);
    client_.releaseKey(X11Client::kControl);
  }

  static QComboBox& durations() { return child<QComboBox>("duration"); }
  static bool listOpen() {
    const auto* const window = durations().view()->window();
    return window->isVisible() && window->windowHandle()->isExposed();
  }
  void openList() {
    clickOn(durations());
    ASSERT_TRUE(eventually(listOpen));
  }
  static QPoint placeOf(int item) {
    auto* const view = durations().view();
    return view->viewport()->mapToGlobal(view->visualRect(view->model()->index(item, 0)).center());
  }
  void chooseCustomMinutes() {
    durations().setCurrentIndex(5);
    ASSERT_TRUE(child("minutes").isVisible());
  }

  /// The dashboard hears of clicks outside, which reach nobody else, and of keys.
  void expectMenuBehaviour() {
    EXPECT_TRUE(window_->grabsPointer());
    EXPECT_FALSE(client_.grabPointer());
    outside_.clear();
    escapes_ = 0;
    client_.click(700, 300);
    ASSERT_TRUE(eventually([this] { return !outside_.empty(); }));
    EXPECT_EQ(outside_, std::vector<std::optional<Point>>{(Point{700, 300})});
    client_.typeKey(X11Client::kEscape);
    ASSERT_TRUE(eventually([this] { return escapes_ > 0; }));
    EXPECT_EQ(escapes_, 1);
  }
};

TEST_F(X11Popup, ClickIntoTheListChoosesAndIsInside) {
  openAwakePage();
  openList();
  clickAt(placeOf(3));
  ASSERT_TRUE(eventually([] { return !listOpen(); }));
  EXPECT_EQ(durations().currentText(), "2 hours");
  EXPECT_EQ(world_.settings.awakeDuration(), 7200);
  EXPECT_TRUE(outside_.empty());
  EXPECT_TRUE(window_->visible());
  expectMenuBehaviour();
}

TEST_F(X11Popup, ListReachesBeyondTheDashboardAndItsClicksAreStillInside) {
  openAwakePage();
  window_->setFrame({100, 480, 340, 484});
  openList();
  EXPECT_FALSE(outside_.size());
  const QPoint place = placeOf(6);
  clickAt(place);
  ASSERT_TRUE(eventually([] { return durations().currentIndex() == 6; })) << place.y();
  EXPECT_TRUE(outside_.empty());
}

TEST_F(X11Popup, ClickOutsideClosesTheListAlone) {
  openAwakePage();
  openList();
  client_.click(700, 300);
  ASSERT_TRUE(eventually([] { return !listOpen(); }));
  EXPECT_TRUE(outside_.empty());
  EXPECT_EQ(durations().currentIndex(), 0);
  expectMenuBehaviour();
}

TEST_F(X11Popup, ClickElsewhereInTheDashboardClosesTheListAlone) {
  openAwakePage();
  openList();
  clickOn(child("plugged"));
  ASSERT_TRUE(eventually([] { return !listOpen(); }));
  EXPECT_TRUE(outside_.empty());
  EXPECT_FALSE(world_.settings.awakeOnlyOnPower()) << "the click does nothing else";
  expectMenuBehaviour();
}

TEST_F(X11Popup, EscapeClosesTheListFirstAndThenIsReported) {
  openAwakePage();
  openList();
  client_.typeKey(X11Client::kEscape);
  ASSERT_TRUE(eventually([] { return !listOpen(); }));
  EXPECT_EQ(escapes_, 0);
  expectMenuBehaviour();
}

TEST_F(X11Popup, KeysOpenTheListAndChoose) {
  openAwakePage();
  durations().setFocus(Qt::TabFocusReason);
  client_.typeKey(X11Client::kSpace);
  ASSERT_TRUE(eventually(listOpen));
  escapes_ = 0;
  client_.typeKey(X11Client::kDown);
  client_.typeKey(X11Client::kDown);
  client_.typeKey(X11Client::kReturn);
  ASSERT_TRUE(eventually([] { return !listOpen(); }));
  EXPECT_EQ(durations().currentText(), "1 hour");
  EXPECT_EQ(escapes_, 0) << "they were the list's";
  EXPECT_EQ(QApplication::focusWidget(), &durations());
  expectMenuBehaviour();
}

TEST_F(X11Popup, KeyEquivalentsRestWhileTheListIsOpen) {
  openAwakePage();
  openList();
  typeControl(X11Client::kQ);
  client_.typeKey(X11Client::kEscape);
  ASSERT_TRUE(eventually([] { return !listOpen(); }));
  EXPECT_EQ(quits_, 0);
  typeControl(X11Client::kQ);
  EXPECT_TRUE(eventually([this] { return quits_ == 1; }));
}

TEST_F(X11Popup, HidingTheDashboardTakesItsListAndLetsThePointerGo) {
  openAwakePage();
  openList();
  window_->hide();
  EXPECT_FALSE(listOpen());
  EXPECT_TRUE(eventually([this] { return client_.grabPointer(); }));
  client_.ungrabPointer();
  window_->show();
  ASSERT_TRUE(eventually([] { return widget().windowHandle()->isExposed(); }));
  expectMenuBehaviour();
}

TEST_F(X11Popup, DestroyingTheDashboardWithItsListOpenLetsThePointerGo) {
  openAwakePage();
  openList();
  window_.reset();
  EXPECT_TRUE(eventually([this] { return client_.grabPointer(); }));
}

TEST_F(X11Popup, LettersReachTheTextField) {
  openAwakePage();
  chooseCustomMinutes();
  clickOn(child("minutes"));
  ASSERT_TRUE(eventually([] { return child("minutes").hasFocus(); }));
  typeControl(X11Client::kA);
  client_.typeKey(X11Client::k4);
  client_.typeKey(X11Client::k5);
  EXPECT_TRUE(eventually([] { return child<QLineEdit>("minutes").text() == "45"; }));
  EXPECT_EQ(world_.settings.awakeCustomMinutes(), 45);
  EXPECT_TRUE(outside_.empty());
}

TEST_F(X11Popup, LettersReachTheTextFieldAfterAListWasOpen) {
  openAwakePage();
  openList();
  clickAt(placeOf(5));
  ASSERT_TRUE(eventually([] { return child("minutes").isVisible(); }));
  client_.typeKey(X11Client::kTab);
  typeControl(X11Client::kA);
  client_.typeKey(X11Client::k4);
  EXPECT_TRUE(eventually([] { return child<QLineEdit>("minutes").text() == "4"; }));
}

TEST_F(X11Popup, ContextMenuOfTheTextFieldActsAndGivesEverythingBack) {
  openAwakePage();
  chooseCustomMinutes();
  auto& field = child<QLineEdit>("minutes");
  clickOn(field, X11Client::kRightButton);
  const auto menu = [] { return qobject_cast<QMenu*>(QApplication::activePopupWidget()); };
  ASSERT_TRUE(eventually([&] { return menu() != nullptr && menu()->windowHandle()->isExposed(); }));
  ASSERT_FALSE(field.hasSelectedText());
  const auto actions = menu()->actions();
  clickAt(menu()->mapToGlobal(menu()->actionGeometry(actions.constLast()).center()));
  ASSERT_TRUE(eventually([&] { return menu() == nullptr; }));
  EXPECT_TRUE(eventually([&] { return field.hasSelectedText(); })) << "select all";
  EXPECT_TRUE(outside_.empty());
  expectMenuBehaviour();
}

TEST_F(X11Popup, EscapeClosesTheContextMenuAlone) {
  openAwakePage();
  chooseCustomMinutes();
  clickOn(child("minutes"), X11Client::kRightButton);
  const auto menuOpen = [] { return qobject_cast<QMenu*>(QApplication::activePopupWidget()) != nullptr; };
  ASSERT_TRUE(eventually(menuOpen));
  client_.typeKey(X11Client::kEscape);
  ASSERT_TRUE(eventually([&] { return !menuOpen(); }));
  EXPECT_EQ(escapes_, 0);
  expectMenuBehaviour();
}

TEST_F(X11Popup, OtherApplicationsActiveWindowIsReportedWhileAListIsOpen) {
  client_.announceActiveWindow(client_.makeWindow());
  openAwakePage();
  openList();
  client_.announceActiveWindow(client_.makeWindow());
  EXPECT_TRUE(eventually([this] { return activations_ == 1; }));
}

TEST_F(X11Popup, AsToolWindowOpeningAListIsNoLossOfFocus) {
  openAwakePageAsTool();
  openList();
  clickAt(placeOf(2));
  ASSERT_TRUE(eventually([] { return !listOpen(); }));
  EXPECT_EQ(durations().currentText(), "1 hour");
  client_.typeKey(X11Client::kEscape);
  ASSERT_TRUE(eventually([this] { return escapes_ > 0; })) << "the keyboard is back";
  EXPECT_EQ(activations_, 0);
  EXPECT_TRUE(outside_.empty());
  EXPECT_TRUE(widget().isActiveWindow());
}

TEST_F(X11Popup, AsToolWindowEscapeClosesTheListFirst) {
  openAwakePageAsTool();
  openList();
  client_.typeKey(X11Client::kEscape);
  ASSERT_TRUE(eventually([] { return !listOpen(); }));
  EXPECT_EQ(escapes_, 0);
  client_.typeKey(X11Client::kEscape);
  ASSERT_TRUE(eventually([this] { return escapes_ > 0; }));
  EXPECT_EQ(escapes_, 1);
  EXPECT_EQ(activations_, 0);
}

TEST_F(X11Popup, AsToolWindowAClickBesideTheListClosesItAlone) {
  openAwakePageAsTool();
  openList();
  client_.click(700, 300);
  ASSERT_TRUE(eventually([] { return !listOpen(); }));
  clickOn(child("plugged"));
  ASSERT_TRUE(eventually([this] { return world_.settings.awakeOnlyOnPower(); }));
  EXPECT_TRUE(outside_.empty());
  EXPECT_EQ(activations_, 0);
}

TEST_F(X11Popup, AsToolWindowLosingTheFocusWithAListOpenIsReported) {
  openAwakePageAsTool();
  openList();
  client_.focus(client_.makeWindow());
  ASSERT_TRUE(eventually([this] { return activations_ > 0; }));
  window_->hide();
  EXPECT_FALSE(listOpen());
  EXPECT_TRUE(eventually([this] { return client_.grabPointer(); }));
}

class X11Alert : public X11Popup {
 protected:
  void showAlert() {
    alert_ = interface_->showAlert({"Keep Awake is running", "Text.", {"Keep Running", "End Session & Quit"}},
                                   [this](std::optional<std::size_t> button) { answers_.push_back(button.value()); });
    ASSERT_TRUE(eventually([] { return alert().windowHandle()->isExposed(); }));
  }
  static QDialog& alert() {
    for (QWidget* const candidate : QApplication::topLevelWidgets()) {
      if (auto* const dialog = qobject_cast<QDialog*>(candidate)) return *dialog;
    }
    throw std::logic_error("no alert");
  }
  ~X11Alert() override { alert_.reset(); }

  std::unique_ptr<Alert> alert_;
  std::vector<std::size_t> answers_;
};

TEST_F(X11Alert, HasTheKeyboardAtOnce) {
  start();
  showAlert();
  ASSERT_TRUE(eventually([] { return alert().isActiveWindow(); }));
  client_.typeKey(X11Client::kTab);
  client_.typeKey(X11Client::kSpace);
  ASSERT_TRUE(eventually([this] { return !answers_.empty(); }));
  EXPECT_EQ(answers_, std::vector<std::size_t>{1});
}

TEST_F(X11Alert, ReturnKeepsRunning) {
  start();
  showAlert();
  ASSERT_TRUE(eventually([] { return alert().isActiveWindow(); }));
  client_.typeKey(X11Client::kReturn);
  ASSERT_TRUE(eventually([this] { return !answers_.empty(); }));
  EXPECT_EQ(answers_, std::vector<std::size_t>{0});
}

TEST_F(X11Alert, ClickOnItWhileTheDashboardIsOpenGoesToTheDashboardFirst) {
  openAwakePage();
  showAlert();
  auto* const button = alert().findChild<QPushButton*>("alertButton1");
  clickOn(*button);
  ASSERT_TRUE(eventually([this] { return !outside_.empty(); }));
  EXPECT_TRUE(answers_.empty());
  window_->hide();
  clickOn(*button);
  ASSERT_TRUE(eventually([this] { return !answers_.empty(); }));
  EXPECT_EQ(answers_, std::vector<std::size_t>{1});
}

TEST_F(X11Alert, HasTheKeyboardOnceTheDashboardItWasShownOverIsHidden) {
  openAwakePage();
  showAlert();
  window_->hide();
  client_.typeKey(X11Client::kReturn);
  ASSERT_TRUE(eventually([this] { return !answers_.empty(); }));
  EXPECT_EQ(escapes_, 0);
}

TEST_F(X11Alert, KeepsTheKeyboardFromADashboardThatIsOpened) {
  openAwakePage();
  window_->hide();
  showAlert();
  window_->show();
  EXPECT_FALSE(window_->visible());
  client_.typeKey(X11Client::kEscape);
  ASSERT_TRUE(eventually([this] { return !answers_.empty(); }));
  EXPECT_EQ(answers_, std::vector<std::size_t>{0});
}

TEST_F(X11Alert, AsToolWindowAClickOnItGoesToTheDashboardFirst) {
  openAwakePageAsTool();
  showAlert();
  const QPoint place = alert().geometry().center();
  client_.click(static_cast<std::int16_t>(place.x()), static_cast<std::int16_t>(place.y()));
  EXPECT_TRUE(eventually([this] { return outside_.size() == 1; }));
}

TEST_F(X11Alert, AsToolWindowTheDashboardLeavesTheAlertItsKeys) {
  openAwakePageAsTool();
  showAlert();
  ASSERT_TRUE(eventually([] { return alert().isActiveWindow(); }));
  client_.typeKey(X11Client::kEscape);
  ASSERT_TRUE(eventually([this] { return !answers_.empty(); }));
  EXPECT_EQ(escapes_, 0);
}

}  // namespace
}  // namespace nimbo
