// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <utility>

#include "platform/display_power.h"

namespace nimbo {

/// A display that obeys when the test says so: a request stays pending until it is carried out,
/// refused or taken back. Its subscriptions may outlive it.
class FakeDisplayPower final : public DisplayPower {
 public:
  [[nodiscard]] Result<Subscription, DisplayPowerError> sleepNow(std::function<void()> failed) override {
    ++requests;
    if (nothingToAsk) return tl::unexpected(*nothingToAsk);
    (*pending_)[requests] = std::move(failed);
    return Subscription([pending = pending_, id = requests] { pending->erase(id); });
  }

  [[nodiscard]] std::size_t pending() const { return pending_->size(); }

  /// The display goes dark.
  void carryOut() {
    asleep = asleep || !pending_->empty();
    pending_->clear();
  }

  /// The desktop refuses whatever is pending, one after the other.
  void fail() const {
    for (int id = 1, last = requests; id <= last; ++id) {
      if (const auto refused = pending_->extract(id)) refused.mapped()();
    }
  }

  std::optional<DisplayPowerError> nothingToAsk;  ///< fails every request at once
  int requests = 0;                               ///< ever made
  bool asleep = false;

 private:
  std::shared_ptr<std::map<int, std::function<void()>>> pending_ =
      std::make_shared<std::map<int, std::function<void()>>>();
};

}  // namespace nimbo
