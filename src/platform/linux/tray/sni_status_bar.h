// SPDX-License-Identifier: MIT
#pragma once

#include <string>

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

  [[nodiscard]] std::unique_ptr<StatusItem> makeItem(const std::string& identifier, StatusItemContent content,
                                                     StatusItemHandlers handlers) override;
  [[nodiscard]] bool showsTitles() const override { return host_.showsLabels; }
  [[nodiscard]] bool putsNewItemsFirst() const override { return host_.putsNewItemsFirst; }
  void onAbsence(std::function<void(const std::string& advice)> absent) override;

 private:
  SdEventMainLoop& loop_;
  const std::string address_;
  const TrayHost host_;
  const char* const advice_;
  PanelAppearance& panel_;
  TrayWatch tray_;
};

}  // namespace nimbo
