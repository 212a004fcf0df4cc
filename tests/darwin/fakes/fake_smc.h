// SPDX-License-Identifier: MIT
#pragma once

#include <IOKit/IOKitLib.h>

#include <memory>

#include "darwin/fakes/fake_core_foundation.h"
#include "support/fake_smc_connection.h"

namespace nimbo::fake {

/// The controller's kernel service while it lives, in front of a table of keys; one at a time.
class Smc {
 public:
  Smc();
  ~Smc();
  Smc(const Smc&) = delete;
  Smc& operator=(const Smc&) = delete;

  FakeSmcService controller;                  ///< absent: there is no service
  bool canBeSought = true;                    ///< else there is no way to ask for a service
  kern_return_t refusal = 0;                  ///< what opening it answers; 0 lets it be opened
  std::unique_ptr<SmcConnection> connection;  ///< the one that is open
};

}  // namespace nimbo::fake
