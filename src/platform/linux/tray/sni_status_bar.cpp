// SPDX-License-Identifier: MIT
#include "platform/linux/tray/sni_status_bar.h"

#include <fmt/format.h>
#include <unistd.h>

#include <utility>

#include "platform/linux/tray/sni_status_item.h"

namespace nimbo {

SniStatusBar::SniStatusBar(SdEventMainLoop& loop, std::string sessionAddress, const std::string& desktop,
                           PanelAppearance& panel)
    : loop_(loop),
      sessionAddress_(std::move(sessionAddress)),
      host_(trayHostOn(desktop)),
      panel_(panel),
      pacer_(loop) {}

std::unique_ptr<StatusItem> SniStatusBar::makeItem(const std::string& identifier, StatusItemContent content,
                                                   StatusItemHandlers handlers) {
  SniStatusItem::Setup setup{fmt::format("org.kde.StatusNotifierItem-{}-{}", ::getpid(), ++made_), identifier, host_};
  return std::make_unique<SniStatusItem>(loop_.event(), sessionAddress_, std::move(setup), std::move(content),
                                         std::move(handlers), panel_, pacer_);
}

}  // namespace nimbo
