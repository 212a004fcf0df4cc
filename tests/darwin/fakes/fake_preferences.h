// SPDX-License-Identifier: MIT
#pragma once

#include "darwin/fakes/fake_core_foundation.h"

namespace nimbo::fake {

/// The preferences of a user while it lives; one at a time.
class Preferences {
 public:
  using Domains = std::map<std::string, std::map<std::string, Held>>;

  Preferences();
  ~Preferences();
  Preferences(const Preferences&) = delete;
  Preferences& operator=(const Preferences&) = delete;

  Domains current;            ///< as every program sees them
  Domains written;            ///< as a restart would find them
  bool failsToWrite = false;  ///< whatever is asked
  int timesWritten = 0;
};

/// The application that this program is of while it lives.
struct Bundle {
  Bundle();
  ~Bundle();
  Bundle(const Bundle&) = delete;
  Bundle& operator=(const Bundle&) = delete;

  std::map<std::string, Held> information;
};

}  // namespace nimbo::fake
