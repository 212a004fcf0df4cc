// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <span>

#include "platform/clock.h"
#include "settings/usage_provider.h"
#include "usage/usage_model.h"

namespace nimbo {

using UsageStates = std::map<UsageProvider, UsageState>;

/// Decides when each provider is read: every five minutes and when the user asks, but only one read
/// of a provider at a time, none before its rate-limit wait is over, and none that comes too late is
/// kept. Main thread only.
class UsageMonitor {
 public:
  /// How each provider is read.
  struct Reads {
    UsageRead codex;
    UsageRead claude;
  };

  /// `clock` and `dates` outlive it.
  UsageMonitor(Reads reads, const Clock& clock, const Dates& dates);
  UsageMonitor(const UsageMonitor&) = delete;
  UsageMonitor& operator=(const UsageMonitor&) = delete;

  [[nodiscard]] const UsageStates& states() const { return states_; }

  /// Switching a provider off ends its read and forgets its reading: switched on again, perhaps with
  /// another sign-in, it must not show the old one's figures. Only a rate-limit wait is remembered.
  void setEnabled(UsageProvider provider, bool enabled);

  /// Starts the reads that are due, or for a manual request all that are allowed.
  void refresh(std::span<const UsageProvider> providers, UsageRequest request);

  /// Ends all reads that run; what is due then is read at the next refresh.
  void stop();

  /// After every change of a state.
  std::function<void()> onChange;

 private:
  /// Ends at an instant of the wall clock, but lasts no longer than it was to when it began, however the clock is set.
  struct Wait {
    UsageTime until;
    std::chrono::duration<double> untilUptime{0};
  };

  /// What is remembered of one provider besides its state, which says whether a read runs.
  struct Record {
    Subscription read;
    std::uint64_t generation = 0;  ///< of the only read whose outcome still counts
    bool isManual = false;         ///< the user asked for the read that runs
    bool isAskedAgain = false;     ///< by the user, while an automatic read runs
    Wait rateLimit;
    Wait nextRefresh;
  };

  [[nodiscard]] bool start(UsageProvider provider, UsageRequest request);
  [[nodiscard]] Wait waitUntil(UsageTime instant) const;
  [[nodiscard]] bool lasts(const Wait& wait) const;
  void beginRead(UsageProvider provider, UsageRequest request);
  void finish(UsageProvider provider, UsageOutcome outcome);
  void endRead(UsageProvider provider);
  void changed() const;

  Reads reads_;
  const Clock& clock_;
  const Dates& dates_;
  UsageStates states_;
  std::map<UsageProvider, Record> records_;
};

}  // namespace nimbo
