// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "platform/linux/loop/sd_event_main_loop.h"
#include "platform/linux/tray/registration_pacer.h"
#include "platform/linux/tray/tray_host.h"
#include "platform/status_bar.h"

namespace nimbo {

class PanelAppearance;

/// The tray, reached as StatusNotifierItems over the session bus. Main thread only.
class SniStatusBar final : public StatusBar {
 public:
  /// `desktop` is the value of XDG_CURRENT_DESKTOP. `panel` outlives the bar.
  SniStatusBar(SdEventMainLoop& loop, std::string sessionAddress, const std::string& desktop, PanelAppearance& panel);

  [[nodiscard]] std::unique_ptr<StatusItem> makeItem(const std::string& identifier, StatusItemContent content,
                                                     StatusItemHandlers handlers) override;

 private:
  SdEventMainLoop& loop_;
  const std::string sessionAddress_;
  const TrayHost host_;
  PanelAppearance& panel_;
  RegistrationPacer pacer_;
  int made_ = 0;
};

}  // namespace nimbo
