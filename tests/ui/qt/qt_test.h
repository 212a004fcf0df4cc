// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QImage>
#include <QLabel>
#include <QTest>
#include <QWindow>
#include <memory>
#include <stdexcept>

#include "support/control_events.h"
#include "ui/controls/palette.h"
#include "ui/qt/dashboard/sample_dashboard.h"
#include "ui/qt/qt_user_interface.h"

namespace nimbo {

/// A color as a picture holds it.
inline QRgb rgb(const Color& color) { return qRgb(color.red, color.green, color.blue); }

/// One user interface on an invisible display for all tests of a program.
class QtTest : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    interface_ = QtUserInterface::make().value();
    ASSERT_NE(interface_, nullptr);
  }
  static void TearDownTestSuite() { interface_.reset(); }

  static QtUserInterface& interface() { return *interface_; }

 private:
  static inline std::unique_ptr<QtUserInterface> interface_;
};

/// The program's window of that name.
inline QWidget& topLevel(const char* name) {
  for (QWidget* const candidate : QApplication::topLevelWidgets()) {
    if (candidate->objectName() == name) return *candidate;
  }
  throw std::logic_error(name);
}

/// The dashboard with a page of readings, connected to its controller as in the program.
class DashboardTest : public QtTest {
 protected:
  void SetUp() override {
    interface().setAppearance(Appearance::light);
    window_ = interface().makeMenuWindow();
    window_->setListener([this](const ControlEvent& event) { log_.push_back(described(event)); });
    world_.fill(controller_, DashboardTab::memory, 40);
    controller_.handle(pressed("more"));
    render();
  }

  void render() { window_->render(controller_.content()); }

  void open() {
    const auto& size = controller_.content().size;
    window_->setFrame({10, 20, size.width, size.height});
    window_->show();
    ASSERT_TRUE(QTest::qWaitFor([] { return widget().windowHandle()->isExposed(); }));
  }

  [[nodiscard]] static QWidget& widget() { return topLevel("dashboard"); }
  template <class Child = QWidget>
  [[nodiscard]] static Child& child(const char* name) {
    if (auto* const found = widget().findChild<Child*>(name)) return *found;
    throw std::logic_error(std::string("no child ") + name);
  }
  [[nodiscard]] static std::string text(const char* name) { return child<QLabel>(name).text().toStdString(); }

  /// As the window system would: to the window, which finds the control by itself.
  static void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QTest::keyClick(widget().windowHandle(), key, modifiers);
  }
  static void click(QPoint place) { QTest::mouseClick(widget().windowHandle(), Qt::LeftButton, Qt::NoModifier, place); }
  static void click(const char* name) {
    QWidget& target = child(name);
    click(target.mapTo(&widget(), target.rect().center()));
  }

  SampleWorld world_;
  DashboardController controller_{world_.sources()};
  std::vector<std::string> log_;
  std::unique_ptr<MenuWindow> window_;
};

}  // namespace nimbo
