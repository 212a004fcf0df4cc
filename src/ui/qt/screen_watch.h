// SPDX-License-Identifier: MIT
#pragma once

#include <QTimer>
#include <functional>
#include <map>
#include <memory>

#include "base/subscription.h"

class QScreen;

namespace nimbo {

/// Tells observers, once for each burst of changes, that the set or the frames of screens changed.
class ScreenWatch {
 public:
  ScreenWatch();

  [[nodiscard]] Subscription observe(std::function<void()> changed);

 private:
  using Observers = std::map<int, std::function<void()>>;
  void watch(QScreen& screen);
  void notify();

  std::shared_ptr<Observers> observers_ = std::make_shared<Observers>();
  int nextObserver_ = 0;
  QTimer changed_;
};

}  // namespace nimbo
