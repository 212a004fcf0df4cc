// SPDX-License-Identifier: MIT
#include "ui/qt/settings/qt_settings_window.h"

#include <QEvent>
#include <QScrollBar>
#include <QShortcut>
#include <QWindow>
#include <algorithm>
#include <utility>

#include "ui/qt/controls/content_widget.h"
#include "ui/qt/controls/page_controls.h"
#include "ui/qt/controls/scroll_area.h"
#include "ui/qt/controls/segmented_tabs.h"
#include "ui/qt/settings/settings_page.h"
#include "ui/qt/windows/window_system.h"

namespace nimbo {
namespace {

constexpr Qt::WindowFlags kFlags = Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                                   Qt::WindowSystemMenuHint | Qt::WindowMinimizeButtonHint | Qt::WindowCloseButtonHint;
constexpr int kScrollStep = 30;  // about a row

double endOf(const SettingsPageContent& page) {
  double end = 0;
  for (const auto& control : page.controls) {
    end = std::max(end, std::visit([](const auto& each) { return each.frame.maxY(); }, control));
  }
  return end;
}

}  // namespace

QtSettingsWindow::QtSettingsWindow(const Theme& theme, WindowSystem& windowSystem)
    : QWidget(nullptr, kFlags),
      theme_(theme),
      windowSystem_(windowSystem),
      listener_([this](const ControlEvent& event) { call(events_.acted, event); }),
      tabs_(new SegmentedTabs(theme, listener_, this)),
      scroll_(new ScrollArea(kScrollStep, this)) {
  setObjectName("settingsWindow");
  setProgramIcon(*this);
  // Its controls have the focus; what keys they leave alone, such as those for a page, come to it.
  scroll_->setFocusPolicy(Qt::NoFocus);
  for (const auto& [key, places] : {std::pair{Qt::Key_PageDown, 1}, std::pair{Qt::Key_PageUp, -1}}) {
    auto* const shortcut = new QShortcut(QKeyCombination(Qt::ControlModifier, key), this);
    connect(shortcut, &QShortcut::activated, tabs_, [this, step = places] { moveTab(step); });
  }
}

void QtSettingsWindow::render(const SettingsWindowContent& content) {
  setWindowTitle(QString::fromStdString(content.title));
  tabs_->setContent(content.tabs);
  renderPages(content.pages);
  size_ = content.size;
  fit();
}

void QtSettingsWindow::renderPages(const std::vector<SettingsPageContent>& contents) {
  while (pages_.size() < contents.size()) pages_.push_back(new SettingsPage(theme_, listener_, scroll_->document()));
  for (; pages_.size() > contents.size(); pages_.pop_back()) discard(*pages_.back());
  for (std::size_t index = 0; index < pages_.size(); ++index) {
    SettingsPage& page = *pages_[index];
    const auto& content = contents[index];
    if (content.visible) {
      pagesFrame_ = content.frame;
      pageEnd_ = endOf(content);
      if (!page.isVisibleTo(scroll_)) scroll_->verticalScrollBar()->setValue(0);
    }
    // The toolkit would move the focus to some control of the page that appears.
    if (!content.visible && page.isAncestorOf(focusWidget())) tabs_->setFocus(Qt::OtherFocusReason);
    page.render(content);
  }
}

// Where all has its place nothing scrolls. Otherwise the pages go down to the window's edge, which cuts them visibly.
void QtSettingsWindow::fit() {
  const QSize wanted = toQSize(size_);
  const QSize size(wanted.width(), std::min(wanted.height(), heightForContent(*this)));
  if (minimumSize() != size || maximumSize() != size) setFixedSize(size);
  const double left = pagesFrame_.x - SettingsPage::kRingRoom;
  const bool cut = size != wanted;
  const double height = cut ? size.height() - pagesFrame_.y : pagesFrame_.height;
  const double document = cut ? pageEnd_ + size_.height - pagesFrame_.maxY() : height;
  scroll_->place({left, pagesFrame_.y, size_.width - left, height},
                 {pagesFrame_.width + 2.0 * SettingsPage::kRingRoom, document}, true);
}

void QtSettingsWindow::moveTab(int places) {
  const int count = tabs_->count();
  if (count > 0) tabs_->setCurrentIndex((tabs_->currentIndex() + places + count) % count);
}

void QtSettingsWindow::show(const WindowPlace& /*place*/) {
  if (presentAlert(windowSystem_)) return;
  if (!isVisible()) {
    fit();
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
