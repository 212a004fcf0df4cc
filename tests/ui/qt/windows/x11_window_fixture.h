// SPDX-License-Identifier: MIT
#pragma once

#include "support/services/private_display.h"
#include "ui/qt/qt_test.h"
#include "x11_client.h"

namespace nimbo {

/// The dashboard on a real X server, opened at 100, 50.
class X11WindowTest : public testing::Test {
 protected:
  void SetUp() override {
    for (const char* name : {"QT_QPA_PLATFORM", "WAYLAND_DISPLAY", "QT_SCALE_FACTOR"}) qunsetenv(name);
  }
  ~X11WindowTest() override {
    window_.reset();
    interface_.reset();
  }

  void start() {
    interface_ = QtUserInterface::make().value();
    ASSERT_NE(interface_, nullptr);
    window_ = interface_->makeMenuWindow();
    window_->setListener([this](const ControlEvent& event) { quits_ += event == pressed("quit"); });
    window_->setEvents({.escapePressed = [this] { ++escapes_; },
                        .clickedOutside = [this](std::optional<Point> place) { outside_.push_back(place); },
                        .otherApplicationActivated = [this] { ++activations_; },
                        .closeRequested = {}});
    world_.fill(controller_, DashboardTab::memory, 3);
    window_->render(controller_.content());
    window_->setFrame({100, 50, controller_.content().size.width, controller_.content().size.height});
  }
  void open() {
    start();
    window_->show();
    ASSERT_TRUE(QTest::qWaitFor([&] { return widget().windowHandle()->isExposed(); }));
  }
  [[nodiscard]] static QWidget& widget() { return topLevel("dashboard"); }
  [[nodiscard]] static QWidget& page() { return *widget().findChild<QWidget*>("page"); }
  template <class Condition>
  static bool eventually(Condition condition) {
    return QTest::qWaitFor(condition, 5000);
  }

  PrivateDisplay display_;
  X11Client client_;
  std::unique_ptr<QtUserInterface> interface_;
  std::unique_ptr<MenuWindow> window_;
  SampleWorld world_;
  DashboardController controller_{world_.sources()};
  int escapes_ = 0;
  std::vector<std::optional<Point>> outside_;
  int activations_ = 0;
  int quits_ = 0;
};

}  // namespace nimbo
