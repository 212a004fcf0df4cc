// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <span>

#include "platform/clock.h"
#include "platform/system_events.h"
#include "settings/usage_provider.h"
#include "usage/usage_model.h"
#include "usage/usage_wait.h"

namespace nimbo {

/// Decides when each provider is read: every five minutes, when the user asks, and once more when the
/// network appears after a read that failed for want of it; but only one read of a provider at a time,
/// none before its rate-limit wait is over, and none that comes too late is kept. Main thread only.
class UsageMonitor {
 public:
  /// How each provider is read.
  struct Reads {
    UsageRead codex;
    UsageRead claude;
  };

  /// The services outlive it.
  UsageMonitor(Reads reads, const Clock& clock, const Dates& dates, Network& network);
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
  /// What is remembered of one provider besides its state, which says whether a read runs.
  struct Record {
    Subscription read;
    std::uint64_t generation = 0;  ///< of the only read whose outcome still counts
    bool isManual = false;         ///< the user asked for the read that runs
    bool isAskedAgain = false;     ///< by the user, while an automatic read runs
    Subscription connection;       ///< from the start of a read until nothing depends on the network
    bool isConnected = false;      ///< the network has appeared since that start
    UsageWait rateLimit;
    UsageWait nextRefresh;
  };

  [[nodiscard]] bool start(UsageProvider provider, UsageRequest request);
  void beginRead(UsageProvider provider, UsageRequest request);
  void finish(UsageProvider provider, UsageOutcome outcome);
  void endRead(UsageProvider provider);
  void observeNetwork(UsageProvider provider);
  void readOverNetwork(UsageProvider provider);
  void changed() const;

  Reads reads_;
  const Clock& clock_;
  const Dates& dates_;
  Network& network_;
  UsageStates states_;
  std::map<UsageProvider, Record> records_;
};

}  // namespace nimbo
