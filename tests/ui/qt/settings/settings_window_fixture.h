// SPDX-License-Identifier: MIT
#pragma once

#include <QComboBox>
#include <string>
#include <vector>

#include "ui/qt/qt_test.h"

namespace nimbo {

/// Two short pages with every kind of control.
inline SettingsWindowContent sampleSettings() {
  CheckBoxContent ai{"menuAI", {150, 80, 80, 22}, "AI"};
  ai.on = true;
  const CheckBoxContent login{"login", {0, 110, 300, 22}, "Launch at login"};
  PopUpContent preset{"preset", {150, 40, 240, 26}, {"All", "AI only", "Mem only"}};
  preset.accessibleName = "Show";
  ButtonContent update{"checkUpdates", {0, 200, 170, 28}};
  update.title = "Check for Updates…";
  LabelContent note{{0, 140, 504, 45}, {11, FontWeight::regular, ColorRole::secondaryLabel}, "One.\nTwo.\nThree."};
  note.lines = 3;

  SettingsPageContent general{{28, 68, 504, 588}, "General", {}, true};
  general.controls = {LabelContent{{0, 0, 504, 26}, {20, FontWeight::semibold}, "General"},
                      LabelContent{{0, 44, 140, 18}, {}, "Show"},
                      preset,
                      ai,
                      login,
                      note,
                      update};
  SettingsPageContent monitors{{28, 68, 504, 588}, "Monitors", {}, false};
  monitors.controls = {CheckBoxContent{"memory", {0, 40, 300, 22}, "Memory"},
                       CheckBoxContent{"cpu", {0, 70, 300, 22}, "CPU"}};
  return {"Nimbo Settings", {560, 680}, {{28, 20, 504, 28}, {"General", "Monitors"}, 0}, {general, monitors}};
}

/// The settings window on the screen. What the user does is in the log; the content changes only where a
/// test changes it.
class SettingsWindowTest : public QtTest {
 protected:
  void SetUp() override {
    interface().setAppearance(Appearance::light);
    window_ = interface().makeSettingsWindow();
    listen();
    render();
  }
  void TearDown() override { interface().setMenuListener({}); }

  /// `then` is done with each event that is in the log.
  void listen(const std::function<void()>& then = [] {}) {
    window_->setEvents({.acted =
                            [this, then](const ControlEvent& event) {
                              log_.push_back(described(event));
                              then();
                            },
                        .becameKey = [this] { ++becameKey_; },
                        .closed = [this](ClosedBy /*by*/) { ++closed_; }});
  }

  void render() { window_->render(content_); }
  void open() {
    window_->show({});
    ASSERT_TRUE(QTest::qWaitForWindowActive(&widget()));
  }
  /// The second page in front, as after a click on its tab.
  void showMonitors() {
    content_.tabs.selected = 1;
    content_.pages[0].visible = false;
    content_.pages[1].visible = true;
    render();
  }
  template <class Content>
  [[nodiscard]] Content& control(std::size_t index) {
    return std::get<Content>(content_.pages[0].controls[index]);
  }

  [[nodiscard]] static QWidget& widget() { return topLevel("settingsWindow"); }
  template <class Child = QWidget>
  [[nodiscard]] static Child& child(const char* name) {
    if (auto* const found = widget().findChild<Child*>(name)) return *found;
    throw std::logic_error(std::string("no child ") + name);
  }
  [[nodiscard]] static QAbstractButton& button(const char* name) { return child<QAbstractButton>(name); }
  [[nodiscard]] static QComboBox& popUp(const char* name) { return child<QComboBox>(name); }
  /// The frame of a control in the window.
  [[nodiscard]] static QRect frameOf(const QWidget& control) {
    return {control.mapTo(&widget(), QPoint(0, 0)), control.size()};
  }

  static void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QTest::keyClick(widget().windowHandle(), key, modifiers);
  }
  static void click(const char* name) {
    const QRect frame = frameOf(child(name));
    QTest::mouseClick(widget().windowHandle(), Qt::LeftButton, {}, {frame.left() + 12, frame.center().y()});
  }
  [[nodiscard]] static std::string focused() {
    const QWidget* const focus = QApplication::focusWidget();
    return focus != nullptr ? focus->objectName().toStdString() : "";
  }

  SettingsWindowContent content_ = sampleSettings();
  std::vector<std::string> log_;
  int becameKey_ = 0;
  int closed_ = 0;
  std::unique_ptr<SettingsWindow> window_;
};

}  // namespace nimbo
