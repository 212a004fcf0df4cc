// SPDX-License-Identifier: MIT
#pragma once

#include <QComboBox>
#include <QLineEdit>
#include <string>
#include <vector>

#include "ui/qt/qt_test.h"

namespace nimbo {

/// The Keep Awake page on the screen, with a session behind it that answers as the program would.
/// Every action of the user's is in the log.
class AwakePageTest : public DashboardTest {
 protected:
  void SetUp() override {
    DashboardTest::SetUp();
    controller_.open(DashboardTab::awake);
    controller_.onContentChanged = [this] { render(); };
    world_.connect(controller_);
    window_->setListener([this](const ControlEvent& event) {
      log_.push_back(described(event));
      controller_.handle(event);
    });
    window_->setEvents({.escapePressed = [this] { ++escapes_; },
                        .clickedOutside = [this](std::optional<Point>) { ++clicksOutside_; },
                        .otherApplicationActivated = {},
                        .closeRequested = {}});
    render();
    open();
  }

  static QComboBox& popUp(const char* name) { return child<QComboBox>(name); }
  static QAbstractButton& button(const char* name) { return child<QAbstractButton>(name); }
  static QLineEdit& minutes() { return child<QLineEdit>("minutes"); }

  void choose(const char* item) {
    popUp("duration").setCurrentText(item);
    log_.clear();
  }
  static void type(const char* text) {
    for (const char* letter = text; *letter != '\0'; ++letter) QTest::keyClick(widget().windowHandle(), *letter);
  }
  static void focus(const char* name) { child(name).setFocus(Qt::TabFocusReason); }

  int escapes_ = 0;
  int clicksOutside_ = 0;
};

}  // namespace nimbo
