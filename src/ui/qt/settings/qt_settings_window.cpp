// SPDX-License-Identifier: MIT
#include "ui/qt/settings/qt_settings_window.h"

#include <QEvent>
#include <QShortcut>
#include <QWindow>
#include <utility>

#include "ui/qt/controls/page_controls.h"
#include "ui/qt/controls/segmented_tabs.h"
#include "ui/qt/settings/settings_page.h"
#include "ui/qt/windows/window_system.h"

namespace nimbo {
namespace {

constexpr Qt::WindowFlags kFlags = Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                                   Qt::WindowSystemMenuHint | Qt::WindowMinimizeButtonHint | Qt::WindowCloseButtonHint;

}  // namespace

QtSettingsWindow::QtSettingsWindow(const Theme& theme, WindowSystem& windowSystem)
    : QWidget(nullptr, kFlags),
      theme_(theme),
      windowSystem_(windowSystem),
      listener_([this](const ControlEvent& event) { call(events_.acted, event); }),
      tabs_(new SegmentedTabs(theme, listener_, this)) {
  setObjectName("settingsWindow");
  setProgramIcon(*this);
  for (const auto& [key, places] : {std::pair{Qt::Key_PageDown, 1}, std::pair{Qt::Key_PageUp, -1}}) {
    auto* const shortcut = new QShortcut(QKeyCombination(Qt::ControlModifier, key), this);
    connect(shortcut, &QShortcut::activated, tabs_, [this, step = places] { moveTab(step); });
  }
}

void QtSettingsWindow::render(const SettingsWindowContent& content) {
  setWindowTitle(QString::fromStdString(content.title));
  if (const QSize size = toQSize(content.size); minimumSize() != size) setFixedSize(size);
  tabs_->setContent(content.tabs);
  renderPages(content.pages);
}

void QtSettingsWindow::renderPages(const std::vector<SettingsPageContent>& contents) {
  while (pages_.size() < contents.size()) pages_.push_back(new SettingsPage(theme_, listener_, this));
  for (; pages_.size() > contents.size(); pages_.pop_back()) pages_.back()->deleteLater();
  for (std::size_t index = 0; index < pages_.size(); ++index) {
    SettingsPage& page = *pages_[index];
    // The toolkit would move the focus to some control of the page that appears.
    if (!contents[index].visible && page.isAncestorOf(focusWidget())) tabs_->setFocus(Qt::OtherFocusReason);
    page.render(contents[index]);
  }
}

void QtSettingsWindow::moveTab(int places) {
  const int count = tabs_->count();
  if (count > 0) tabs_->setCurrentIndex((tabs_->currentIndex() + places + count) % count);
}

void QtSettingsWindow::show(const WindowPlace& /*place*/) {
  if (presentAlert(windowSystem_)) return;
  if (!isVisible()) {
    if (!std::exchange(placed_, true)) placeInMiddle(*this);
    // The focus is in the window but on no control: Tab goes to the first one, and nothing is marked
    // until then.
    setAttribute(Qt::WA_KeyboardFocusChange, false);
    setFocus(Qt::ActiveWindowFocusReason);
  }
  bringToFront(*this, windowSystem_);
}

bool QtSettingsWindow::event(QEvent* event) {
  const bool handled = QWidget::event(event);
  if (event->type() == QEvent::Show) windowHandle()->installEventFilter(this);
  // Some window managers let the user make every window full screen.
  if (event->type() == QEvent::WindowStateChange && isFullScreen()) showNormal();
  if (event->type() == QEvent::WindowActivate) call(events_.becameKey);
  if (event->type() == QEvent::Hide && !event->spontaneous()) call(events_.closed, ClosedBy::other);
  return handled;
}

// Native windows see every event before the widgets in them. Whoever uses the pointer needs no ring.
bool QtSettingsWindow::eventFilter(QObject* /*watched*/, QEvent* event) {
  if (event->type() == QEvent::MouseButtonPress && testAttribute(Qt::WA_KeyboardFocusChange)) {
    setAttribute(Qt::WA_KeyboardFocusChange, false);
    update();
  }
  return false;
}

}  // namespace nimbo
