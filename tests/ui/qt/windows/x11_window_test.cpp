// SPDX-License-Identifier: MIT
#include <QAbstractNativeEventFilter>
#include <QTimer>
#include <QToolTip>
#include <cstdlib>

#include "ui/controls/palette.h"
#include "x11_window_fixture.h"

namespace nimbo {
namespace {

class X11Window : public X11WindowTest {
 protected:
  /// Counts the changes of other windows' properties that the program has heard of.
  struct PropertyChanges final : QAbstractNativeEventFilter {
    bool nativeEventFilter(const QByteArray& /*type*/, void* event, qintptr* /*result*/) override {
      const auto* const change = static_cast<xcb_property_notify_event_t*>(event);
      const bool isProperty = (change->response_type & 0x7F) == XCB_PROPERTY_NOTIFY;
      if (isProperty && QWidget::find(change->window) == nullptr) ++count;
      return false;
    }
    int count = 0;
  };

  /// As a window manager does, one change after the other.
  void activate(xcb_window_t window) {
    PropertyChanges changes;
    QCoreApplication::instance()->installNativeEventFilter(&changes);
    client_.announceActiveWindow(window);
    EXPECT_TRUE(eventually([&] { return changes.count > 0; }));
  }
};

TEST_F(X11Window, StandsWhereItWasPut) {
  open();
  const auto ground = color(ColorRole::background, Appearance::light);
  const std::uint32_t expected = qRgb(ground.red, ground.green, ground.blue) & 0xFFFFFF;
  EXPECT_TRUE(eventually([&] { return client_.pixel(115, 400) == expected; }));
  EXPECT_NE(client_.pixel(95, 400), expected);
  EXPECT_EQ(client_.pixel(435, 400), expected);
  EXPECT_NE(client_.pixel(442, 400), expected);
}

TEST_F(X11Window, CornersAreCutOutWithoutACompositor) {
  const std::uint32_t root = client_.pixel(100, 50);
  open();
  ASSERT_TRUE(eventually([&] { return client_.pixel(115, 400) != root; }));
  EXPECT_EQ(client_.pixel(100, 50), root);
  EXPECT_EQ(client_.pixel(439, 50), root);
  EXPECT_NE(client_.pixel(106, 56), root);
}

TEST_F(X11Window, CornersAreLeftToACompositorThatRunsAndTheShadowHasAMarginAroundTheCard) {
  client_.becomeCompositor();
  open();
  EXPECT_TRUE(widget().mask().isEmpty());
  const auto& size = controller_.content().size;
  const QRect card(100, 50, qRound(size.width), qRound(size.height));
  EXPECT_EQ(widget().geometry(), card + QMargins(20, 14, 20, 26));
  EXPECT_EQ(QRect(page().mapToGlobal(QPoint()), page().size()), card);
  EXPECT_EQ(client_.frameExtents(static_cast<xcb_window_t>(widget().winId())),
            (std::vector<std::uint32_t>{20, 20, 14, 26}));
  const QImage picture = widget().grab().toImage();
  EXPECT_EQ(qAlpha(picture.pixel(0, 0)), 0);
  const auto beside = [&](int distance) { return qAlpha(picture.pixel(20 - distance, 200)); };
  EXPECT_GT(beside(2), beside(8));
  EXPECT_GT(beside(8), beside(16));
  EXPECT_GT(beside(16), 0);
}

TEST_F(X11Window, ShadowGoesWithTheCompositor) {
  {
    X11Client compositor;
    compositor.becomeCompositor();
    open();
    window_->hide();
  }
  ASSERT_TRUE(eventually([this] { return !client_.hasCompositor(); }));
  window_->show();
  EXPECT_EQ(widget().geometry().topLeft(), QPoint(100, 50));
  EXPECT_EQ(page().pos(), QPoint(0, 0));
  EXPECT_FALSE(widget().mask().isEmpty());
  EXPECT_EQ(client_.frameExtents(static_cast<xcb_window_t>(widget().winId())),
            (std::vector<std::uint32_t>{0, 0, 0, 0}));
}

TEST_F(X11Window, ClickInTheMarginIsOneOutside) {
  client_.becomeCompositor();
  open();
  client_.click(200, 40);
  ASSERT_TRUE(eventually([this] { return !outside_.empty(); }));
  EXPECT_EQ(outside_[0], (Point{200, 40}));
  client_.click(105, 300);
  client_.click(600, 300);
  ASSERT_TRUE(eventually([this] { return outside_.size() >= 2; }));
  EXPECT_EQ(outside_[1], (Point{600, 300})) << "the card is inside";
}

TEST_F(X11Window, KeysReachItWithoutAWindowManager) {
  open();
  client_.typeKey(X11Client::kEscape);
  ASSERT_TRUE(eventually([this] { return escapes_ > 0; }));
  EXPECT_EQ(escapes_, 1);
  EXPECT_TRUE(window_->visible());
}

TEST_F(X11Window, ControlQQuits) {
  open();
  client_.pressKey(X11Client::kControl);
  client_.typeKey(X11Client::kQ);
  client_.releaseKey(X11Client::kControl);
  EXPECT_TRUE(eventually([this] { return quits_ == 1; }));
}

TEST_F(X11Window, ClickOutsideIsReportedWithItsPlaceAndKeptFromOthers) {
  open();
  EXPECT_TRUE(window_->grabsPointer());
  client_.click(600, 300);
  ASSERT_TRUE(eventually([this] { return !outside_.empty(); }));
  EXPECT_EQ(outside_[0], (Point{600, 300}));
  EXPECT_TRUE(window_->visible()) << "closing is the owner's decision";
}

TEST_F(X11Window, ClickInsideIsNotReported) {
  open();
  client_.click(130, 200);
  client_.click(600, 300);
  ASSERT_TRUE(eventually([this] { return !outside_.empty(); }));
  EXPECT_EQ(outside_, std::vector<std::optional<Point>>{(Point{600, 300})});
}

TEST_F(X11Window, TakesThePointerAsSoonAsThePanelLetsGo) {
  start();
  ASSERT_TRUE(client_.grabPointer());
  window_->show();
  EXPECT_FALSE(window_->grabsPointer());
  client_.ungrabPointer();
  EXPECT_TRUE(eventually([this] { return window_->grabsPointer(); }));
  EXPECT_FALSE(client_.grabPointer());
  client_.click(600, 300);
  EXPECT_TRUE(eventually([this] { return !outside_.empty(); }));
  client_.typeKey(X11Client::kEscape);
  EXPECT_TRUE(eventually([this] { return escapes_ > 0; }));
}

TEST_F(X11Window, PointerThatRestsShowsTheToolTipInTheWindowsColours) {
  open();
  interface_->setAppearance(Appearance::dark);
  client_.movePointer(300, 420);
  client_.movePointer(302, 422);
  ASSERT_TRUE(eventually([] { return QToolTip::isVisible(); }));
  EXPECT_TRUE(QToolTip::text().contains("Memory stored on disk.")) << QToolTip::text().toStdString();
  const auto ground = color(ColorRole::background, Appearance::dark);
  EXPECT_EQ(QToolTip::palette().color(QPalette::ToolTipBase).rgb(), qRgb(ground.red, ground.green, ground.blue));
  EXPECT_TRUE(window_->visible());
  client_.typeKey(X11Client::kEscape);
  EXPECT_TRUE(eventually([this] { return escapes_ > 0; }));
}

TEST_F(X11Window, ShownAgainWhileOpenKeepsThePointer) {
  open();
  window_->show();
  EXPECT_TRUE(window_->grabsPointer());
  EXPECT_FALSE(client_.grabPointer());
  client_.click(600, 300);
  EXPECT_TRUE(eventually([this] { return !outside_.empty(); }));
}

TEST_F(X11Window, HiddenWindowLetsThePointerGo) {
  open();
  window_->hide();
  EXPECT_FALSE(window_->grabsPointer());
  EXPECT_TRUE(eventually([this] { return client_.grabPointer(); }));
}

TEST_F(X11Window, SecondClickIsKeptFromOthersUntilItIsNoDoubleClickAnyMore) {
  open();
  QApplication::setDoubleClickInterval(100);
  window_->keepSecondClick();
  window_->hide();
  EXPECT_FALSE(client_.grabPointer());
  EXPECT_TRUE(eventually([this] { return client_.grabPointer(); }));
}

TEST_F(X11Window, OpenedAgainBeforeTheSecondClickTakesThePointer) {
  open();
  window_->keepSecondClick();
  window_->hide();
  window_->show();
  EXPECT_TRUE(window_->grabsPointer());
  client_.click(600, 300);
  EXPECT_TRUE(eventually([this] { return !outside_.empty(); }));
}

TEST_F(X11Window, OpensAgainAfterHiding) {
  open();
  window_->hide();
  client_.click(600, 300);
  window_->show();
  client_.click(700, 350);
  ASSERT_TRUE(eventually([this] { return !outside_.empty(); }));
  EXPECT_EQ(outside_, std::vector<std::optional<Point>>{(Point{700, 350})});
}

TEST_F(X11Window, OtherApplicationsActiveWindowIsReported) {
  const auto before = client_.makeWindow();
  client_.announceActiveWindow(before);
  open();
  const auto later = client_.makeWindow();
  client_.announceActiveWindow(later);
  EXPECT_TRUE(eventually([this] { return activations_ == 1; }));
}

TEST_F(X11Window, PanelsAndLostFocusAreNoActivation) {
  client_.announceActiveWindow(client_.makeWindow());
  open();
  activate(client_.makeWindow("_NET_WM_WINDOW_TYPE_DOCK"));
  activate(XCB_WINDOW_NONE);
  activate(client_.makeWindow("_NET_WM_WINDOW_TYPE_DESKTOP"));
  EXPECT_EQ(activations_, 0);
  activate(client_.makeWindow());
  EXPECT_TRUE(eventually([this] { return activations_ == 1; }));
}

TEST_F(X11Window, FocusThatAMenuGivesBackIsNoActivation) {
  const auto before = client_.makeWindow();
  client_.announceActiveWindow(XCB_WINDOW_NONE);
  open();
  activate(before);
  activate(XCB_WINDOW_NONE);
  activate(before);
  EXPECT_EQ(activations_, 0);
  activate(client_.makeWindow());
  EXPECT_TRUE(eventually([this] { return activations_ == 1; }));
}

TEST_F(X11Window, ActivationsAreOfNoInterestWhileHidden) {
  open();
  window_->hide();
  client_.announceActiveWindow(client_.makeWindow());
  window_->show();
  client_.announceActiveWindow(client_.makeWindow());
  ASSERT_TRUE(eventually([this] { return activations_ > 0; }));
  EXPECT_EQ(activations_, 1);
}

TEST_F(X11Window, InAWaylandSessionLosingTheFocusIsReported) {
  qputenv("WAYLAND_DISPLAY", "wayland-0");
  open();
  EXPECT_EQ(widget().windowType(), Qt::Tool);
  client_.focus(static_cast<xcb_window_t>(widget().winId()));
  ASSERT_TRUE(eventually([&] { return widget().isActiveWindow(); }));
  EXPECT_EQ(activations_, 0);
  client_.focus(client_.makeWindow());
  EXPECT_TRUE(eventually([this] { return activations_ == 1; }));
}

TEST_F(X11Window, PanelsLeaveTheRestOfTheirScreenVisible) {
  start();
  const auto visible = [this] { return interface_->screens().at(0).visibleFrame; };
  EXPECT_EQ(visible(), (Rect{0, 0, 1280, 800}));
  client_.makePanel({0, 0, 28, 0, 0, 0, 0, 0, 1280, 2559, 0, 0});
  EXPECT_EQ(visible(), (Rect{0, 0, 1280, 800})) << "beside this screen";
  client_.makePanel({0, 1400, 0, 0, 0, 0, 0, 799, 0, 0, 0, 0});
  EXPECT_EQ(visible(), (Rect{0, 0, 1280, 800})) << "on a screen to the left";
  client_.makePanel({0, 0, 0, 36, 0, 0, 0, 0, 0, 0, 0, 1279});
  EXPECT_EQ(visible(), (Rect{0, 0, 1280, 764}));
  client_.makePanel({40, 0, 0, 0});
  client_.makePanel({0, 50, 24, 0});
  EXPECT_EQ(visible(), (Rect{40, 24, 1190, 740}));
}

TEST_F(X11Window, ScaleTwoHalvesPanels) {
  qputenv("QT_SCALE_FACTOR", "2");
  start();
  client_.makePanel({0, 0, 0, 72, 0, 0, 0, 0, 0, 0, 0, 1279});
  EXPECT_EQ(interface_->screens().at(0).visibleFrame, (Rect{0, 0, 640, 364}));
}

TEST_F(X11Window, PointerIsKnownInPointsButNotInAWaylandSession) {
  qputenv("QT_SCALE_FACTOR", "2");
  start();
  client_.movePointer(1000, 20);
  EXPECT_EQ(interface_->pointer(), (Point{500, 10}));
  window_.reset();
  interface_.reset();
  qputenv("WAYLAND_DISPLAY", "wayland-0");
  start();
  EXPECT_EQ(interface_->pointer(), std::nullopt);
}

class X11WindowInAWaylandSession : public X11Window {
 protected:
  void SetUp() override {
    X11Window::SetUp();
    qputenv("WAYLAND_DISPLAY", "wayland-0");
    other_ = client_.makeWindow();
    open();
    ASSERT_TRUE(eventually([this] { return client_.windowAt(950, 550) != other_; }));
  }
  xcb_window_t other_ = XCB_WINDOW_NONE;
};

TEST_F(X11WindowInAWaylandSession, ClicksOutsideAreReportedAndKeptFromOthers) {
  EXPECT_TRUE(window_->grabsPointer());
  client_.click(130, 200);
  client_.click(950, 550);
  ASSERT_TRUE(eventually([this] { return !outside_.empty(); }));
  EXPECT_EQ(outside_, std::vector<std::optional<Point>>{(Point{950, 550})});
  window_->hide();
  EXPECT_TRUE(eventually([this] { return client_.windowAt(950, 550) == other_; }));
}

TEST_F(X11WindowInAWaylandSession, ClicksOutsideAreThoseBesideTheCardAsItIsNow) {
  const auto card = client_.windowAt(130, 200);
  const auto around = client_.windowAt(600, 200);
  EXPECT_NE(card, around);
  window_->setFrame({500, 50, 340, 300});
  EXPECT_TRUE(eventually([&] { return client_.windowAt(130, 200) == around; }));
  EXPECT_TRUE(eventually([&] { return client_.windowAt(600, 400) == around; }));
  EXPECT_TRUE(eventually([&] { return client_.windowAt(600, 200) == card; }));
}

TEST_F(X11WindowInAWaylandSession, SecondClickIsKeptFromOthersUntilItIsNoDoubleClickAnyMore) {
  QApplication::setDoubleClickInterval(100);
  window_->keepSecondClick();
  window_->hide();
  EXPECT_NE(client_.windowAt(950, 550), other_);
  EXPECT_TRUE(eventually([this] { return client_.windowAt(950, 550) == other_; }));
}

TEST_F(X11Window, ScaleTwoHalvesPixelsIntoPoints) {
  qputenv("QT_SCALE_FACTOR", "2");
  open();
  const auto screens = interface_->screens();
  ASSERT_EQ(screens.size(), 1U);
  EXPECT_EQ(screens[0].frame, (Rect{0, 0, 640, 400}));
  EXPECT_EQ(interface_->toPoints({1200, 10, 24, 24}), (Rect{600, 5, 12, 12}));
  client_.click(1000, 300);
  ASSERT_TRUE(eventually([this] { return !outside_.empty(); }));
  EXPECT_EQ(outside_[0], (Point{500, 150}));
}

TEST_F(X11Window, ScaleTwoTakesAPlaceAtThePointerAsItIs) {
  qputenv("QT_SCALE_FACTOR", "2");
  open();
  client_.click(1000, 300);
  ASSERT_TRUE(eventually([this] { return !outside_.empty(); }));
  EXPECT_EQ(interface_->toPoints({488, 138, 24, 24}), (Rect{488, 138, 24, 24})) << "in points";
  EXPECT_EQ(interface_->toPoints({988, 288, 24, 24}), (Rect{494, 144, 12, 12})) << "in pixels";
}

TEST_F(X11Window, ScaleTwoTakesAPlaceAwayFromThePointerAsTheLastOneWas) {
  qputenv("QT_SCALE_FACTOR", "2");
  open();
  client_.click(1000, 300);
  ASSERT_TRUE(eventually([this] { return !outside_.empty(); }));
  const Rect away{100, 10, 24, 24};
  EXPECT_EQ(interface_->toPoints(away), (Rect{50, 5, 12, 12})) << "nothing is known yet";
  ASSERT_EQ(interface_->toPoints({488, 138, 24, 24}), (Rect{488, 138, 24, 24}));
  EXPECT_EQ(interface_->toPoints(away), away);
  ASSERT_EQ(interface_->toPoints({988, 288, 24, 24}), (Rect{494, 144, 12, 12}));
  EXPECT_EQ(interface_->toPoints(away), (Rect{50, 5, 12, 12}));
}

TEST_F(X11Window, IsInNoListOfWindowsHoweverOftenItOpens) {
  qputenv("WAYLAND_DISPLAY", "wayland-0");  // where it is none of the windows that managers leave alone
  open();
  const auto listed = [this] {
    const auto id = static_cast<xcb_window_t>(widget().winId());
    return !client_.hasState(id, "_NET_WM_STATE_SKIP_TASKBAR") || !client_.hasState(id, "_NET_WM_STATE_SKIP_PAGER");
  };
  EXPECT_FALSE(listed());
  EXPECT_TRUE(client_.hasState(static_cast<xcb_window_t>(widget().winId()), "_NET_WM_STATE_ABOVE"));
  window_->hide();
  window_->setFrame({100, 50, 340, 400});
  window_->show();
  EXPECT_TRUE(eventually([&] { return widget().windowHandle()->isExposed(); }));
  EXPECT_FALSE(listed());
}

TEST_F(X11Window, NoDisplayGivesNoUserInterfaceAndLaterItMay) {
  const std::string name = display_.name();
  qunsetenv("DISPLAY");
  EXPECT_EQ(QtUserInterface::make(), tl::unexpected(WindowsEnd::noDisplay));
  qputenv("DISPLAY", ":98765");
  EXPECT_EQ(QtUserInterface::make(), tl::unexpected(WindowsEnd::noDisplay));
  qputenv("DISPLAY", name.c_str());
  EXPECT_TRUE(QtUserInterface::make());
}

[[noreturn]] void loseServer(PrivateDisplay& display) {
  const auto interface = QtUserInterface::make().value();
  const auto window = interface->makeMenuWindow();
  window->show();
  QTimer::singleShot(100, [&] { display.stop(); });
  QCoreApplication::exec();
  std::_Exit(77);
}

TEST_F(X11Window, LostServerEndsTheProcessWithoutACrash) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(loseServer(display_), testing::ExitedWithCode(1), "connection broke");
}

}  // namespace
}  // namespace nimbo
