// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>
#include <utility>

#include "base/observer_list.h"
#include "platform/linux/bus/bus_name_watch.h"
#include "platform/linux/loop/sd_event_main_loop.h"
#include "platform/linux/tray/tray_host.h"
#include "platform/linux/tray/tray_watch.h"
#include "platform/status_bar.h"

namespace nimbo {

class PanelAppearance;

/// The tray, reached as StatusNotifierItems over the session bus. Main thread only.
class SniStatusBar final : public StatusBar {
 public:
  struct SessionBus {
    sd_bus* connection;   ///< null without a bus
    std::string address;  ///< for the items' own connections
  };

  /// `desktop` is the value of XDG_CURRENT_DESKTOP. `panel` outlives the bar.
  SniStatusBar(SdEventMainLoop& loop, SessionBus session, const std::string& desktop, PanelAppearance& panel);

  [[nodiscard]] std::unique_ptr<StatusItem> makeItem(StatusItemName name, StatusItemContent content,
                                                     StatusItemHandlers handlers) override;
  [[nodiscard]] bool showsTitles() const override { return host_.showsLabels; }
  [[nodiscard]] ItemOrder itemOrder() const override { return host_.itemOrder; }
  [[nodiscard]] Subscription observeItemOrder(std::function<void()> changed) override {
    return orderObservers_.add(std::move(changed));
  }
  void onAbsence(std::function<void(const std::string& advice)> absent) override;

 private:
  [[nodiscard]] std::unique_ptr<BusNameWatch> followSwaybar(sd_bus* session);

  SdEventMainLoop& loop_;
  const std::string address_;
  TrayHost host_;
  const char* const advice_;
  PanelAppearance& panel_;
  ObserverList<> orderObservers_;
  std::unique_ptr<BusNameWatch> swaybar_;  ///< before the tray, so that it is heard of first
  TrayWatch tray_;
};

}  // namespace nimbo
