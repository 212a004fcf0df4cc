// SPDX-License-Identifier: MIT
#pragma once

#include "platform/status_bar.h"

namespace nimbo {

/// The menu bar, whose newest item is the first one and which is always there. Main thread only.
class NsStatusBar final : public StatusBar {
 public:
  [[nodiscard]] std::unique_ptr<StatusItem> makeItem(StatusItemName name, StatusItemContent content,
                                                     StatusItemHandlers handlers) override;
  [[nodiscard]] bool showsTitles() const override { return true; }
  [[nodiscard]] ItemOrder itemOrder() const override { return ItemOrder::newestFirst; }
  [[nodiscard]] Subscription observeItemOrder(std::function<void()> /*changed*/) override { return {}; }
  void onAbsence(std::function<void(const std::string& advice)> /*absent*/) override {}
};

}  // namespace nimbo
