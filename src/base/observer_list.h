// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <list>
#include <memory>
#include <utility>

#include "base/subscription.h"

namespace nimbo {

/// Callbacks that want to hear of the same event. Observers may come and go while one is told;
/// subscriptions may outlive the list. Main thread only.
template <class... Arguments>
class ObserverList {
 public:
  [[nodiscard]] Subscription add(std::function<void(Arguments...)> observer) {
    auto entry = std::make_shared<Entry>(Entry{std::move(observer), true});
    entries_->push_back(entry);
    return Subscription([entries = std::weak_ptr(entries_), entry] {
      entry->subscribed = false;
      if (const auto list = entries.lock()) list->remove(entry);
    });
  }

  void notify(Arguments... arguments) const {
    const auto entries = *entries_;
    for (const auto& entry : entries) {
      if (entry->subscribed) entry->observer(arguments...);
    }
  }

 private:
  struct Entry {
    std::function<void(Arguments...)> observer;
    bool subscribed;
  };
  std::shared_ptr<std::list<std::shared_ptr<Entry>>> entries_ = std::make_shared<std::list<std::shared_ptr<Entry>>>();
};

}  // namespace nimbo
