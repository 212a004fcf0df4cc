// SPDX-License-Identifier: MIT
// The settings window on a real X server, which has no window manager.
#include <QAbstractItemView>
#include <QComboBox>
#include <QSignalSpy>

#include "settings_window_fixture.h"
#include "support/services/private_display.h"
#include "ui/controls/palette.h"
#include "ui/qt/windows/managed_display.h"
#include "ui/qt/windows/x11_client.h"

namespace nimbo {
namespace {

template <class Display>
class SettingsWindowOn : public testing::Test {
 protected:
  void SetUp() override {
    for (const char* name : {"QT_QPA_PLATFORM", "WAYLAND_DISPLAY", "QT_SCALE_FACTOR"}) qunsetenv(name);
  }
  ~SettingsWindowOn() override {
    window_.reset();
    interface_.reset();
  }

  void start() {
    interface_ = QtUserInterface::make().value();
    ASSERT_NE(interface_, nullptr);
    interface_->setMenuListener([this](MenuRole chosen) {
      if (chosen == MenuRole::quit) log_.emplace_back("quit");
    });
    window_ = interface_->makeSettingsWindow();
    window_->setEvents({.acted = [this](const ControlEvent& event) { log_.push_back(described(event)); },
                        .becameKey = [this] { ++becameKey_; },
                        .closed = [this](ClosedBy /*by*/) { ++closed_; }});
    window_->render(sampleSettings());
  }
  void open() {
    start();
    window_->show({});
    ASSERT_TRUE(eventually([] { return widget().windowHandle()->isExposed() && widget().isActiveWindow(); }));
  }

  static QWidget& widget() { return topLevel("settingsWindow"); }
  static QComboBox& popUp() { return *widget().findChild<QComboBox*>("preset"); }
  void clickAt(QPoint place) {
    client_.click(static_cast<std::int16_t>(place.x()), static_cast<std::int16_t>(place.y()));
  }
  void typeControl(std::uint8_t key) {
    client_.pressKey(X11Client::kControl);
    client_.typeKey(key);
    client_.releaseKey(X11Client::kControl);
  }
  template <class Condition>
  static bool eventually(Condition condition) {
    return QTest::qWaitFor(condition, 5000);
  }

  Display display_;
  X11Client client_;
  std::unique_ptr<QtUserInterface> interface_;
  std::unique_ptr<SettingsWindow> window_;
  std::vector<std::string> log_;
  int becameKey_ = 0;
  int closed_ = 0;
};

using X11SettingsWindow = SettingsWindowOn<PrivateDisplay>;

TEST_F(X11SettingsWindow, OpensALittleAboveTheMiddleOfTheScreenWithTheKeyboard) {
  open();
  EXPECT_EQ(widget().geometry(), QRect(360, 48, 560, 680));
  const auto ground = color(ColorRole::background, Appearance::light);
  const std::uint32_t expected = qRgb(ground.red, ground.green, ground.blue) & 0xFFFFFF;
  EXPECT_TRUE(eventually([&] { return client_.pixel(365, 53) == expected; }));
  EXPECT_EQ(becameKey_, 1);
  for (const auto key : {X11Client::kTab, X11Client::kTab, X11Client::kTab, X11Client::kSpace}) client_.typeKey(key);
  ASSERT_TRUE(eventually([this] { return !log_.empty(); }));
  EXPECT_EQ(log_, std::vector<std::string>{"menuAI off"});
}

TEST_F(X11SettingsWindow, KeysOfTheMenuQuitAndClose) {
  open();
  typeControl(X11Client::kQ);
  ASSERT_TRUE(eventually([this] { return !log_.empty(); }));
  EXPECT_EQ(log_, std::vector<std::string>{"quit"});
  typeControl(X11Client::kW);
  EXPECT_TRUE(eventually([this] { return !window_->visible(); }));
}

TEST_F(X11SettingsWindow, ListOpensUnderThePointerAndChooses) {
  open();
  clickAt(popUp().mapToGlobal(popUp().rect().center()));
  auto* const view = popUp().view();
  ASSERT_TRUE(eventually([&] { return view->isVisible() && view->window()->windowHandle()->isExposed(); }));
  typeControl(X11Client::kQ);
  clickAt(view->viewport()->mapToGlobal(view->visualRect(view->model()->index(2, 0)).center()));
  ASSERT_TRUE(eventually([&] { return !view->isVisible(); }));
  EXPECT_EQ(log_, std::vector<std::string>{"preset 2"}) << "keys of the menu rest meanwhile";
}

TEST_F(X11SettingsWindow, ClosedWithItsListOpenItLetsThePointerGo) {
  open();
  clickAt(popUp().mapToGlobal(popUp().rect().center()));
  ASSERT_TRUE(eventually([] { return popUp().view()->isVisible(); }));
  window_->hide();
  EXPECT_TRUE(eventually([this] { return client_.grabPointer(); }));
}

TEST_F(X11SettingsWindow, FocusIsAskedForInTheUsersNameEachTime) {
  client_.listenAsWindowManager();
  open();
  const auto id = static_cast<std::uint32_t>(widget().winId());
  const auto asked = [&] { return client_.takeActivationFromPager() == id; };
  EXPECT_TRUE(eventually(asked));
  client_.focus(client_.makeWindow());
  ASSERT_TRUE(eventually([] { return !widget().isActiveWindow(); }));
  window_->show({});
  EXPECT_TRUE(eventually(asked));
}

TEST_F(X11SettingsWindow, OpensBesideTheDashboardOnceThatIsHidden) {
  open();
  const auto dashboard = interface_->makeMenuWindow();
  dashboard->setFrame({20, 20, 300, 300});
  dashboard->show();
  ASSERT_TRUE(eventually([&] { return dashboard->grabsPointer(); }));
  typeControl(X11Client::kQ);
  dashboard->hide();
  window_->show({});
  typeControl(X11Client::kW);
  EXPECT_TRUE(eventually([this] { return !window_->visible(); }));
  EXPECT_EQ(log_, std::vector<std::string>{}) << "the key went to the dashboard";
}

TEST_F(X11SettingsWindow, OnAScreenThatIsTooSmallThePagesScrollUnderTheTabs) {
  qputenv("QT_SCALE_FACTOR", "2");
  open();
  EXPECT_EQ(widget().geometry(), QRect(40, 0, 560, 360)) << "a title bar finds its place above";
  EXPECT_EQ(widget().devicePixelRatioF(), 2);
  clickAt(QPoint(40 + 28 + 16, 68 + 110 + 11) * 2);
  ASSERT_TRUE(eventually([this] { return !log_.empty(); }));
  EXPECT_EQ(log_, std::vector<std::string>{"login on"});
  auto content = sampleSettings();
  content.pages[0].controls.emplace_back(CheckBoxContent{"farDown", {0, 560, 300, 22}, "Far down"});
  window_->render(content);
  auto& last = *widget().findChild<QWidget*>("farDown");
  const auto inSight = [&] { return widget().rect().contains(QRect(last.mapTo(&widget(), QPoint()), last.size())); };
  EXPECT_FALSE(inSight());
  for (int notch = 0; notch < 6; ++notch) client_.click(640, 400, X11Client::kWheelDown);
  EXPECT_TRUE(eventually(inSight)) << "over a list, whose choice stays";
  for (int notch = 0; notch < 6; ++notch) client_.click(640, 400, X11Client::kWheelUp);
  EXPECT_TRUE(eventually([&] { return !inSight(); }));
  client_.typeKey(X11Client::kTab);
  client_.typeKey(X11Client::kTab);
  EXPECT_TRUE(eventually([&] { return last.hasFocus() && inSight(); })) << "after the button";
  EXPECT_EQ(log_.size(), 1U);
}

/// With a real window manager.
class ManagedSettingsWindow : public SettingsWindowOn<ManagedDisplay> {
 protected:
  void SetUp() override {
    SettingsWindowOn::SetUp();
    ASSERT_TRUE(eventually([this] { return client_.hasWindowManager(); }));
    open();
    ASSERT_TRUE(eventually([] { return frame().height() > widget().height(); })) << "no title bar";
  }
  static QRect frame() { return widget().frameGeometry(); }
};

TEST_F(ManagedSettingsWindow, ComesBackToTheFrontFromBehindAnotherWindow) {
  QWidget other;
  other.setGeometry(widget().geometry());
  other.show();
  other.activateWindow();
  ASSERT_TRUE(eventually([&] { return other.isActiveWindow(); }));
  const int before = becameKey_;
  window_->show({});
  EXPECT_TRUE(eventually([&] { return widget().isActiveWindow() && becameKey_ == before + 1; }));
}

TEST_F(ManagedSettingsWindow, OpensAgainWhereItWas) {
  const QRect middle = frame();
  window_->hide();
  ASSERT_TRUE(eventually([] { return !widget().windowHandle()->isExposed(); }));
  window_->show({});
  ASSERT_TRUE(eventually([] { return widget().isActiveWindow() && widget().windowHandle()->isExposed(); }));
  EXPECT_TRUE(eventually([&] { return frame() == middle; }))
      << frame().x() << ',' << frame().y() << " after " << middle.x() << ',' << middle.y();
}

TEST_F(ManagedSettingsWindow, ComesBackFromBeingMinimised) {
  widget().showMinimized();
  ASSERT_TRUE(eventually([] { return !widget().isActiveWindow() && !widget().windowHandle()->isExposed(); }));
  window_->show({});
  EXPECT_TRUE(eventually([] { return widget().isActiveWindow() && widget().windowHandle()->isExposed(); }));
}

TEST_F(ManagedSettingsWindow, MadeFullScreenItGoesBackToItsSize) {
  QSignalSpy states(widget().windowHandle(), &QWindow::windowStateChanged);
  const auto id = static_cast<xcb_window_t>(widget().winId());
  client_.askFor(id, "_NET_WM_STATE_FULLSCREEN");
  ASSERT_TRUE(eventually([&] { return states.count() >= 2; }));
  EXPECT_TRUE(eventually(
      [&] { return !client_.hasState(id, "_NET_WM_STATE_FULLSCREEN") && widget().size() == QSize(560, 680); }));
}

}  // namespace
}  // namespace nimbo
