// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "sample_usage.h"
#include "ui/qt/controls/scroll_area.h"
#include "ui/qt/dashboard/chart_widget.h"
#include "ui/qt/qt_test.h"

namespace nimbo {

inline constexpr auto kCodex = UsageProvider::codex;
inline constexpr auto kClaude = UsageProvider::claude;

/// The AI page on the screen, filled by its view. Every action of the user's is in the log.
class UsagePageTest : public DashboardTest {
 protected:
  void SetUp() override {
    DashboardTest::SetUp();
    controller_.open(DashboardTab::ai);
    controller_.onContentChanged = [this] { render(); };
    show(sampleUsage(now()));
    render();
    open();
  }

  [[nodiscard]] UsageTime now() const { return world_.clock.now(); }
  void show(const UsageStates& states) {
    world_.usage = states;
    controller_.show();
  }
  void showClaudeFirst() {
    world_.settings.setClaudeFirst(true);
    controller_.show();
  }
  void showCodex(const UsageState& codex) {
    show({{UsageProvider::codex, codex}, {UsageProvider::claude, sampleUsage(now()).at(UsageProvider::claude)}});
  }

  static QWidget& card(UsageProvider provider) {
    return child(provider == UsageProvider::codex ? "usageCard.codex" : "usageCard.claude");
  }
  static auto rows(UsageProvider provider) { return card(provider).findChildren<QWidget*>("usageRow"); }
  template <class Part>
  static Part& part(QWidget& whole, const char* name) {
    if (auto* const found = whole.findChild<Part*>(name)) return *found;
    throw std::logic_error(std::string("no part ") + name);
  }
  static std::string textOf(QWidget& whole, const char* name) { return part<QLabel>(whole, name).text().toStdString(); }
  static std::string status(UsageProvider provider) { return textOf(card(provider), "usageCardStatus"); }
  static ChartWidget& bar(UsageProvider provider, int row) {
    return part<ChartWidget>(*rows(provider)[row], "usageRowBar");
  }

  static std::string focused() {
    const QWidget* const focus = QApplication::focusWidget();
    return focus != nullptr ? focus->objectName().toStdString() : "";
  }
  /// Where Tab goes from the window on.
  static std::vector<std::string> tabStops(int count) {
    std::vector<std::string> stops;
    while (count-- > 0) {
      press(Qt::Key_Tab);
      stops.push_back(focused());
    }
    return stops;
  }
};

}  // namespace nimbo
