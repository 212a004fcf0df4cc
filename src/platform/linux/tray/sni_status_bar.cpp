// SPDX-License-Identifier: MIT
#include "platform/linux/tray/sni_status_bar.h"

#include <utility>

#include "platform/linux/desktop/desktop_programs.h"
#include "platform/linux/tray/sni_status_item.h"

namespace nimbo {

SniStatusBar::SniStatusBar(SdEventMainLoop& loop, SessionBus session, const std::string& desktop,
                           PanelAppearance& panel)
    : loop_(loop),
      address_(std::move(session.address)),
      host_(trayHostOn(desktop)),
      advice_(adviceWithoutTray(desktop)),
      panel_(panel),
      swaybar_(desktopIs(desktop, "sway") ? followSwaybar(session.connection) : nullptr),
      tray_(session.connection, loop) {}

// Of sway's bars only its own has this name, which it takes before the other one.
std::unique_ptr<BusNameWatch> SniStatusBar::followSwaybar(sd_bus* session) {
  return std::make_unique<BusNameWatch>(
      session, "org.freedesktop.StatusNotifierWatcher", [this](const std::string& owner) {
        const ItemOrder order = owner.empty() ? ItemOrder::oldestFirst : ItemOrder::newestFirst;
        if (std::exchange(host_.itemOrder, order) != order) orderObservers_.notify();
      });
}

std::unique_ptr<StatusItem> SniStatusBar::makeItem(StatusItemName name, StatusItemContent content,
                                                   StatusItemHandlers handlers) {
  return std::make_unique<SniStatusItem>(loop_, address_, SniStatusItem::Setup{std::move(name), host_},
                                         std::move(content), std::move(handlers), panel_, tray_);
}

void SniStatusBar::onAbsence(std::function<void(const std::string& advice)> absent) {
  tray_.onAbsence([advice = advice_, absent = std::move(absent)] { absent(advice); });
}

}  // namespace nimbo
