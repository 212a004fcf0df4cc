// SPDX-License-Identifier: MIT
#include "ui/user_interface.h"

#include <QScreen>
#include <clocale>

#include "qt_test.h"
#include "ui/qt/qt_user_interface.h"

namespace nimbo {
namespace {

using QtUserInterfaceTest = QtTest;

TEST_F(QtUserInterfaceTest, ScreensHaveFramesAndThePrimaryComesFirst) {
  const auto screens = interface().screens();
  ASSERT_FALSE(screens.empty());
  const QRect primary = QGuiApplication::primaryScreen()->geometry();
  EXPECT_EQ(screens[0].frame.width, primary.width());
  EXPECT_EQ(screens[0].frame.height, primary.height());
  EXPECT_LE(screens[0].visibleFrame.height, screens[0].frame.height);
}

TEST_F(QtUserInterfaceTest, WithoutScalingPixelsArePoints) {
  EXPECT_EQ(interface().toPoints({700, 10, 24, 24}), (Rect{700, 10, 24, 24}));
  EXPECT_EQ(interface().toPoints({-9000, 10, 24, 24}), (Rect{-9000, 10, 24, 24})) << "on no screen";
}

TEST_F(QtUserInterfaceTest, ScreenChangesAreReportedOncePerBurstAndNotAfterUnsubscribing) {
  int calls = 0;
  auto subscription = interface().observeScreens([&] { ++calls; });
  auto* const screen = QGuiApplication::primaryScreen();
  Q_EMIT screen->geometryChanged(screen->geometry());
  Q_EMIT screen->availableGeometryChanged(screen->availableGeometry());
  EXPECT_EQ(calls, 0);
  ASSERT_TRUE(QTest::qWaitFor([&] { return calls > 0; }));
  EXPECT_EQ(calls, 1);

  subscription.reset();
  int witness = 0;
  auto other = interface().observeScreens([&] { ++witness; });
  Q_EMIT screen->geometryChanged(screen->geometry());
  ASSERT_TRUE(QTest::qWaitFor([&] { return witness > 0; }));
  EXPECT_EQ(calls, 1);
}

TEST_F(QtUserInterfaceTest, ObserverMayEndItsOwnSubscription) {
  Subscription subscription;
  int calls = 0;
  subscription = interface().observeScreens([&] {
    ++calls;
    subscription.reset();
  });
  auto* const screen = QGuiApplication::primaryScreen();
  Q_EMIT screen->geometryChanged(screen->geometry());
  ASSERT_TRUE(QTest::qWaitFor([&] { return calls == 1; }));
}

TEST_F(QtUserInterfaceTest, NumbersKeepTheirPointInEveryLocale) {
  EXPECT_STREQ(std::setlocale(LC_NUMERIC, nullptr), "C");
}

TEST_F(QtUserInterfaceTest, ProgramIsNamedForTheDesktop) {
  EXPECT_EQ(QCoreApplication::applicationName(), "Nimbo");
  EXPECT_EQ(QGuiApplication::desktopFileName(), "com.quellwerk.Nimbo");
  EXPECT_FALSE(QGuiApplication::quitOnLastWindowClosed());
  EXPECT_FALSE(QCoreApplication::isQuitLockEnabled());
}

TEST_F(QtUserInterfaceTest, WindowsComeAndGo) {
  for (int round = 0; round < 3; ++round) {
    const auto window = interface().makeMenuWindow();
    EXPECT_FALSE(window->visible());
    window->setFrame({0, 0, 340, 400});
    window->show();
    EXPECT_TRUE(window->visible());
    window->hide();
    EXPECT_FALSE(window->visible());
  }
  const auto closedWhileOpen = interface().makeMenuWindow();
  closedWhileOpen->show();
}

// So nobody tiles it.
TEST_F(QtUserInterfaceTest, DashboardThatCannotChooseItsPlaceHasAFixedSize) {
  const auto window = interface().makeMenuWindow();
  const auto& widget = dynamic_cast<QWidget&>(*window);
  for (const double height : {400, 300, 500}) {
    window->setFrame({0, 0, 340, height});
    EXPECT_GE(widget.height(), height);
    EXPECT_EQ(widget.minimumSize(), widget.size());
    EXPECT_EQ(widget.maximumSize(), widget.size());
  }
}

}  // namespace
}  // namespace nimbo
