// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "base/observer_list.h"
#include "platform/application_instance.h"

namespace nimbo {

/// The application as the system knows it, without a Dock icon: later starts, links and requests to quit come from
/// there. A request to quit is the action "quit", which decides; one of the whole session's end is not asked about.
/// Main thread only.
class NsApplicationInstance final : public ApplicationInstance {
 public:
  NsApplicationInstance();
  ~NsApplicationInstance() override;

  [[nodiscard]] Result<InstanceRole, InstanceError> claim(const std::vector<std::string>& links,
                                                          ApplicationInstanceHandlers handlers) override;
  void release() override;

  /// The session ends, and the process with it, as soon as `ended` returns.
  [[nodiscard]] Subscription observeSessionEnd(std::function<void()> ended) {
    return sessionEnd_.add(std::move(ended));
  }

  // What runs the application's own loop, which runs the main loop, and stops it.
  static void run();
  static void stop();

 private:
  struct Delegate;  ///< keeps the Objective-C object
  std::unique_ptr<Delegate> delegate_;
  ObserverList<> sessionEnd_;
};

}  // namespace nimbo
