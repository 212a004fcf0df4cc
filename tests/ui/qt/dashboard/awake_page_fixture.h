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
    window_->setActions({.selectTab = {},
                         .openSettings = {},
                         .showMore = {},
                         .showLess = {},
                         .openActivityMonitor = {},
                         .quit = {},
                         .awake = recorded(world_.connect(controller_))});
    window_->setEvents({.keyDown =
                            [this](Key key) {
                              keys_.push_back(key);
                              return false;
                            },
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

  std::vector<Key> keys_;
  int clicksOutside_ = 0;

 private:
  AwakeActions recorded(AwakeActions actions) {
    const auto logged = [this](const char* name, auto action) {
      return [this, name, action](const auto&... values) {
        log_.push_back((std::string(name) + ... + (' ' + described(values))));
        action(values...);
      };
    };
    return {logged("start", actions.startOrStop),       logged("extend", actions.extend),
            logged("duration", actions.selectDuration), logged("minutes", actions.editMinutes),
            logged("date", actions.pickDate),           logged("display", actions.switchDisplay),
            logged("plugged", actions.switchPlugged),   logged("battery", actions.selectBatteryFloor),
            logged("off", actions.turnDisplayOff)};
  }
  static std::string described(bool on) { return on ? "on" : "off"; }
  static std::string described(std::size_t index) { return std::to_string(index); }
  static std::string described(const std::string& text) { return text; }
  static std::string described(std::chrono::system_clock::time_point date) {
    return std::to_string(std::chrono::system_clock::to_time_t(date));
  }
};

}  // namespace nimbo
