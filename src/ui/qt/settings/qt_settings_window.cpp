// SPDX-License-Identifier: MIT
#include "ui/qt/settings/qt_settings_window.h"

#include <QShortcut>
#include <utility>

#include "ui/qt/controls/segmented_tabs.h"
#include "ui/qt/settings/settings_page.h"

namespace nimbo {

QtSettingsWindow::QtSettingsWindow(const Theme& theme, WindowSystem& windowSystem)
    : theme_(theme),
      window_(windowSystem),
      tabs_(new SegmentedTabs(
          theme,
          [this](std::size_t index) {
            // A copy, because the action may give this window other actions.
            if (const auto select = actions_.selectTab) select(index);
          },
          &window_)) {
  window_.setObjectName("settingsWindow");
  window_.setBecameKey([this] {
    if (const auto becameKey = actions_.becameKey) becameKey();
  });
  tabs_->setObjectName("tabs");
  tabs_->setAccessibleName("Pages");
  for (const auto& [key, places] : {std::pair{Qt::Key_PageDown, 1}, std::pair{Qt::Key_PageUp, -1}}) {
    auto* const shortcut = new QShortcut(QKeyCombination(Qt::ControlModifier, key), &window_);
    QObject::connect(shortcut, &QShortcut::activated, tabs_, [this, step = places] { moveTab(step); });
  }
}

void QtSettingsWindow::setActions(SettingsWindowActions actions) { actions_ = std::move(actions); }

void QtSettingsWindow::render(const SettingsWindowContent& content) {
  const QSize size(qRound(content.size.width), qRound(content.size.height));
  window_.setWindowTitle(QString::fromStdString(content.title));
  if (window_.minimumSize() != size) window_.setFixedSize(size);
  tabs_->setContent(content.tabs);
  renderPages(content.pages);
}

void QtSettingsWindow::renderPages(const std::vector<SettingsPageContent>& contents) {
  while (pages_.size() < contents.size()) pages_.push_back(new SettingsPage(theme_, actions_, &window_));
  for (; pages_.size() > contents.size(); pages_.pop_back()) pages_.back()->deleteLater();
  for (std::size_t index = 0; index < pages_.size(); ++index) {
    SettingsPage& page = *pages_[index];
    // The toolkit would let it go to some control of the page that comes.
    if (!contents[index].visible && page.isAncestorOf(window_.focusWidget())) tabs_->setFocus(Qt::OtherFocusReason);
    page.render(contents[index]);
  }
}

void QtSettingsWindow::moveTab(int places) {
  const int count = tabs_->count();
  if (count > 0) tabs_->setCurrentIndex((tabs_->currentIndex() + places + count) % count);
}

void QtSettingsWindow::show() { window_.present(); }
void QtSettingsWindow::close() { window_.close(); }
bool QtSettingsWindow::visible() const { return window_.isVisible(); }

}  // namespace nimbo
