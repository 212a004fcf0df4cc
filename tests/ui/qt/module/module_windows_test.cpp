// SPDX-License-Identifier: MIT
// The module as the program has it: loaded while it runs, with no event loop of the toolkit's own.
#include <gtest/gtest.h>

#include <QApplication>
#include <QDeadlineTimer>
#include <QPointer>
#include <QTest>
#include <QWidget>
#include <QWindow>
#include <functional>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/posix/loop/dl_module_loader.h"
#include "support/control_events.h"
#include "support/fake_main_loop.h"
#include "support/fake_workspace.h"
#include "ui/module/module_user_interface.h"
#include "ui/qt/dashboard/sample_dashboard.h"
#include "ui/qt/dashboard/sample_usage.h"

namespace nimbo {
namespace {

using Log = std::vector<std::string>;

SettingsWindowContent settingsContent() {
  SettingsPageContent page{{28, 68, 504, 588}, "General", {}, true};
  page.controls.emplace_back(CheckBoxContent{"login", {0, 110, 300, 22}, "Launch at login"});
  return {"Nimbo Settings", {560, 680}, {{28, 20, 504, 28}, {"General", "Monitors"}, 0}, {page}};
}

/// Hands what is due to the toolkit, as the loop that runs the program does: never from within a loop of its own.
bool turnUntil(const std::function<bool()>& reached) {
  QDeadlineTimer limit(10000);
  while (!reached() && !limit.hasExpired()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 20);
  return reached();
}

QWidget* find(const char* name) {
  for (QWidget* const candidate : QApplication::topLevelWidgets()) {
    if (candidate->objectName() == name) return candidate;
  }
  return nullptr;
}

QWidget& topLevel(const char* name) {
  if (QWidget* const found = find(name)) return *found;
  throw std::logic_error(name);
}

/// At its left end, where a check box has its box.
void click(const QWidget& window, const char* name) {
  const auto* const control = window.findChild<QWidget*>(name);
  if (control == nullptr) throw std::logic_error(name);
  const QPoint place(12, control->height() / 2);
  QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {}, control->mapTo(&window, place));
}

/// How many colours its picture has.
std::size_t colours(QWidget& window) {
  const QImage picture = window.grab().toImage();
  std::set<QRgb> found;
  for (int y = 0; y < picture.height(); ++y) {
    for (int x = 0; x < picture.width(); ++x) found.insert(picture.pixel(x, y));
  }
  return found.size();
}

/// One program that has loaded the module.
class ModuleWindows : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    ASSERT_EQ(QCoreApplication::instance(), nullptr);
    interface_ = std::make_unique<ModuleUserInterface>(ModuleUserInterface::Services{loop_, modules_, workspace_});
    interface_->setAppearance(Appearance::dark);
    ASSERT_EQ(QCoreApplication::instance(), nullptr) << "before a window is wanted";
  }
  static void TearDownTestSuite() {
    interface_.reset();
    EXPECT_EQ(QCoreApplication::instance(), nullptr);
    EXPECT_TRUE(workspace_.notices.empty());
  }

  static ModuleUserInterface& interface() { return *interface_; }

  [[nodiscard]] std::unique_ptr<DashboardWindow> openDashboard(DashboardTab tab) {
    auto window = interface().makeDashboardWindow();
    window->setEvents({.acted = [this](const ControlEvent& event) { log_.push_back(described(event)); },
                       .closed = [this](ClosedBy) { log_.emplace_back("closed"); }});
    world_.fill(controller_, tab, 40);
    window->render(controller_.content());
    window->show({.item = Rect{400, 0, 24, 24}});
    EXPECT_TRUE(turnUntil([] { return topLevel("dashboard").windowHandle()->isExposed(); }));
    return window;
  }

  SampleWorld world_;
  DashboardController controller_{world_.sources()};
  Log log_;

 private:
  static inline DlModuleLoader modules_{NIMBO_MODULE_FOLDER};
  static inline FakeMainLoop loop_;
  static inline FakeWorkspace workspace_;
  static inline std::unique_ptr<ModuleUserInterface> interface_;
};

TEST_F(ModuleWindows, DashboardIsShownAndTellsWhatTheUserDoes) {
  const auto window = openDashboard(DashboardTab::memory);
  ASSERT_TRUE(window->visible());
  QWidget& widget = topLevel("dashboard");
  EXPECT_GT(colours(widget), 20U);
  EXPECT_LT(widget.palette().color(QPalette::Window).lightness(), 128) << "dark, as it was told before it was loaded";

  click(widget, "settings");
  EXPECT_TRUE(turnUntil([this] { return !log_.empty(); }));
  EXPECT_EQ(log_, Log{"settings"});
  QTest::keyClick(widget.windowHandle(), Qt::Key_Escape);
  EXPECT_FALSE(window->visible());
  EXPECT_EQ(log_, (Log{"settings", "closed"}));
}

TEST_F(ModuleWindows, SettingsAreShownAndTellWhatTheUserDoes) {
  std::vector<MenuRole> chosen;
  interface().setMenuListener([&](MenuRole role) { chosen.push_back(role); });
  const auto window = interface().makeSettingsWindow();
  window->setEvents({.acted = [this](const ControlEvent& event) { log_.push_back(described(event)); },
                     .becameKey = [this] { log_.emplace_back("key"); },
                     .closed = [this](ClosedBy) { log_.emplace_back("closed"); }});
  window->render(settingsContent());
  window->show({});
  EXPECT_TRUE(turnUntil([this] { return !log_.empty(); }));
  QWidget& widget = topLevel("settingsWindow");
  EXPECT_EQ(widget.windowTitle(), "Nimbo Settings");
  EXPECT_GT(colours(widget), 20U);

  click(widget, "login");
  QTest::keyClick(widget.windowHandle(), Qt::Key_Q, Qt::ControlModifier);
  EXPECT_EQ(chosen, std::vector{MenuRole::quit});
  window->hide();
  EXPECT_EQ(log_, (Log{"key", "login on", "closed"}));
  interface().setMenuListener({});
}

// As the program does with the buttons for the settings and for quitting.
TEST_F(ModuleWindows, ActionMayCloseItsWindowAndOpenOthers) {
  const auto dashboard = openDashboard(DashboardTab::memory);
  const auto settings = interface().makeSettingsWindow();
  settings->render(settingsContent());
  std::unique_ptr<Alert> alert;
  dashboard->setEvents({.acted = [&](const ControlEvent& event) {
    dashboard->hide();
    if (event.identifier == "settings") return settings->show({});
    alert =
        interface().showAlert({"Quit?", "", {"Keep", "Quit"}, 0}, [&](std::optional<std::size_t>) { alert.reset(); });
  }});
  click(topLevel("dashboard"), "settings");
  EXPECT_FALSE(dashboard->visible());
  EXPECT_TRUE(settings->visible());

  dashboard->show({.item = Rect{400, 0, 24, 24}});
  ASSERT_TRUE(turnUntil([] { return topLevel("dashboard").windowHandle()->isExposed(); }));
  click(topLevel("dashboard"), "quit");
  EXPECT_FALSE(dashboard->visible());
  ASSERT_TRUE(turnUntil([] { return topLevel("alert").windowHandle()->isExposed(); }));
  dashboard->show({.item = Rect{400, 0, 24, 24}});
  EXPECT_FALSE(dashboard->visible()) << "while a question is to be answered";
  QTest::keyClick(topLevel("alert").windowHandle(), Qt::Key_Escape);
  EXPECT_TRUE(turnUntil([&] { return alert == nullptr; }));
}

TEST_F(ModuleWindows, AlertIsAnsweredByTheLoopAndMayEndThen) {
  std::unique_ptr<Alert> alert;
  alert = interface().showAlert({"Quit?", "", {"Keep", "Quit"}, 0}, [&](std::optional<std::size_t> button) {
    log_.push_back(std::to_string(button.value()));
    alert.reset();
  });
  ASSERT_TRUE(turnUntil([] { return topLevel("alert").windowHandle()->isExposed(); }));
  click(topLevel("alert"), "alertButton1");
  EXPECT_TRUE(turnUntil([this] { return !log_.empty(); }));
  EXPECT_EQ(log_, Log{"1"});
  EXPECT_EQ(find("alert"), nullptr);
}

// The toolkit leaves such work to its own event loop, and there is none.
TEST_F(ModuleWindows, WhatAPageNoLongerShowsIsDeleted) {
  world_.usage = sampleUsage(world_.clock.now());
  const auto window = openDashboard(DashboardTab::ai);
  const QPointer<QWidget> card = topLevel("dashboard").findChild<QWidget*>("usageCard.codex");
  ASSERT_FALSE(card.isNull());
  auto content = controller_.content();
  auto& shown = std::get<UsageContent>(content.page).cards;
  shown.erase(shown.begin());
  window->render(content);
  EXPECT_TRUE(turnUntil([&] { return card.isNull(); }));
}

TEST(MissingModule, IsToldInTheSystemsWords) {
  DlModuleLoader modules("/nonexistent");
  FakeMainLoop loop;
  FakeWorkspace workspace;
  ModuleUserInterface interface({loop, modules, workspace});
  const auto window = interface.makeDashboardWindow();
  bool closed = false;
  window->setEvents({.closed = [&](ClosedBy) { closed = true; }});
  window->show({});
  loop.runPosted();
  EXPECT_TRUE(closed);
  EXPECT_FALSE(window->visible());
  ASSERT_EQ(workspace.notices.size(), 1U);
  EXPECT_NE(workspace.notices[0].second.find("/nonexistent/nimbo-ui.so"), std::string::npos);
}

}  // namespace
}  // namespace nimbo
