// SPDX-License-Identifier: MIT
#pragma once

#include <QTimer>
#include <functional>

#include "base/observer_list.h"
#include "base/subscription.h"

class QScreen;

namespace nimbo {

/// Tells observers, once for each burst of changes, that the set or the frames of screens changed.
class ScreenWatch {
 public:
  ScreenWatch();

  [[nodiscard]] Subscription observe(std::function<void()> changed);

 private:
  void watch(QScreen& screen);

  ObserverList<> observers_;
  QTimer changed_;
};

}  // namespace nimbo
