// SPDX-License-Identifier: MIT
#pragma once

#include <IOKit/ps/IOPowerSources.h>
#include <IOKit/pwr_mgt/IOPMLib.h>

#include <memory>

#include "darwin/fakes/fake_core_foundation.h"

namespace nimbo::fake {

/// The power management of the machine while it lives; one at a time.
class Power {
 public:
  Power();
  ~Power();
  Power(const Power&) = delete;
  Power& operator=(const Power&) = delete;

  struct Assertion {
    std::string type;
    std::string name;
  };
  std::map<IOPMAssertionID, Assertion> assertions;
  IOReturn refusal = 0;  ///< what the creation of assertions answers; 0 grants it

  /// The descriptions of the power sources, in order; what is no dictionary is a source that is not described.
  std::vector<Held> sources;
  bool tellsInfo = true;
  bool tellsList = true;
  bool listIsArray = true;
  bool notifies = true;
  /// Has those who asked for it called, on the main run loop.
  void notify() const;

  struct Notification {
    IOPowerSourceCallbackType callback;
    void* context;
    Held source;
  };
  std::vector<std::unique_ptr<Notification>> notifications;
  IOPMAssertionID lastAssertion = 0;
};

}  // namespace nimbo::fake
