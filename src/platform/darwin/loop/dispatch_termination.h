// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <vector>

#include "platform/darwin/loop/dispatch_source.h"
#include "platform/system_events.h"

namespace nimbo {

/// SIGTERM, SIGINT and SIGHUP, delivered on the main queue, which the main loop serves.
class DispatchTermination final : public Termination {
 public:
  DispatchTermination();
  DispatchTermination(const DispatchTermination&) = delete;
  DispatchTermination& operator=(const DispatchTermination&) = delete;

  /// One observer at a time; a later one replaces it.
  [[nodiscard]] Subscription observe(std::function<void(Cause cause)> requested) override;

 private:
  void requested(Cause cause) const;

  std::vector<DispatchSource> sources_;
  std::function<void(Cause)> requested_;
};

}  // namespace nimbo
