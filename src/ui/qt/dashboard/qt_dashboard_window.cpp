// SPDX-License-Identifier: MIT
#include "ui/qt/dashboard/qt_dashboard_window.h"

#include <utility>

#include "ui/qt/controls/qt_geometry.h"

namespace nimbo {

QtDashboardWindow::QtDashboardWindow(const Theme& theme, WindowSystem& windowSystem)
    : window_(theme, windowSystem), page_(new DashboardPage(theme, &window_)) {
  window_.setObjectName("dashboard");
  window_.setKeyEquivalents([this](const QKeyEvent& key) { return page_->performKeyEquivalent(key); });
}

void QtDashboardWindow::setActions(DashboardActions actions) { page_->setActions(std::move(actions)); }
void QtDashboardWindow::setEvents(MenuWindowEvents events) { window_.setEvents(std::move(events)); }
void QtDashboardWindow::render(const DashboardContent& content) { page_->render(content); }
void QtDashboardWindow::setFrame(const Rect& frame) { window_.setGeometry(toQRect(frame)); }
void QtDashboardWindow::show() { window_.present(); }
void QtDashboardWindow::hide() { window_.dismiss(); }
bool QtDashboardWindow::visible() const { return window_.isVisible(); }
bool QtDashboardWindow::grabsPointer() const { return window_.grabsPointer(); }

}  // namespace nimbo
