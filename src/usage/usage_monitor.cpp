// SPDX-License-Identifier: MIT
#include "usage/usage_monitor.h"

#include <algorithm>
#include <utility>

#include "usage/usage_messages.h"

namespace nimbo {
namespace {

constexpr std::chrono::seconds kRefreshInterval{300};

}  // namespace

UsageMonitor::UsageMonitor(Reads reads, const Clock& clock, const Dates& dates, Network& network)
    : reads_(std::move(reads)), clock_(clock), dates_(dates), network_(network) {
  for (const auto provider : kAllUsageProviders) states_[provider];
}

void UsageMonitor::setEnabled(UsageProvider provider, bool enabled) {
  auto& state = states_[provider];
  if (state.enabled == enabled) return;
  endRead(provider);
  records_[provider].nextRefresh = {};
  records_[provider].connection.reset();
  state = {};
  state.enabled = enabled;
  changed();
}

void UsageMonitor::refresh(std::span<const UsageProvider> providers, UsageRequest request) {
  bool anything = false;
  for (const auto provider : kAllUsageProviders) {
    const bool isWanted = std::ranges::find(providers, provider) != providers.end();
    if (isWanted && start(provider, request)) anything = true;
  }
  if (anything) changed();
}

bool UsageMonitor::start(UsageProvider provider, UsageRequest request) {
  auto& state = states_[provider];
  auto& record = records_[provider];
  const bool manual = request == UsageRequest::manual;
  if (!state.enabled) return false;
  if (state.isRefreshing) {
    if (manual && !record.isManual) record.isAskedAgain = true;
    return false;
  }
  if (!manual && record.nextRefresh.lasts(clock_)) return false;
  if (record.rateLimit.lasts(clock_)) {
    if (!manual) return false;
    state.message = usage_messages::rateLimitReached(dates_.shortTime(record.rateLimit.until()));
    state.retryNotBefore = record.rateLimit.until();
    return true;
  }
  observeNetwork(provider);
  beginRead(provider, request);
  return true;
}

void UsageMonitor::beginRead(UsageProvider provider, UsageRequest request) {
  auto& record = records_[provider];
  states_[provider].isRefreshing = true;
  record.isManual = request == UsageRequest::manual;
  const auto& read = provider == UsageProvider::codex ? reads_.codex : reads_.claude;
  record.read = read(request, [this, provider, generation = record.generation](UsageOutcome outcome) {
    if (generation == records_[provider].generation) finish(provider, std::move(outcome));
  });
}

void UsageMonitor::finish(UsageProvider provider, UsageOutcome outcome) {
  auto& state = states_[provider];
  auto& record = records_[provider];
  if (outcome) {
    state.snapshot = std::move(*outcome);
    state.message.reset();
    state.retryNotBefore.reset();
  } else {
    state.message = std::move(outcome.error().message);
    state.retryNotBefore = outcome.error().retryNotBefore;
    if (state.retryNotBefore) record.rateLimit = UsageWait(*state.retryNotBefore, clock_);
  }
  record.nextRefresh = UsageWait(clock_.now() + kRefreshInterval, clock_);
  const bool again = record.isAskedAgain;
  if (outcome || outcome.error().retry != UsageRetry::withNetwork) record.connection.reset();
  endRead(provider);
  changed();
  if (again) return refresh(std::span(&provider, 1), UsageRequest::manual);
  if (record.connection && record.isConnected) readOverNetwork(provider);
}

// Already while a read runs, which may learn only seconds later that it has failed.
void UsageMonitor::observeNetwork(UsageProvider provider) {
  auto& record = records_[provider];
  record.isConnected = false;
  record.connection = network_.observe([this, provider] {
    records_[provider].isConnected = true;
    if (!states_[provider].isRefreshing) readOverNetwork(provider);
  });
}

// Once: the read that begins does not observe the network.
void UsageMonitor::readOverNetwork(UsageProvider provider) {
  records_[provider].connection.reset();
  beginRead(provider, UsageRequest::automatic);
  changed();
}

void UsageMonitor::stop() {
  bool anything = false;
  for (const auto provider : kAllUsageProviders) {
    if (!states_[provider].isRefreshing) continue;
    records_[provider].connection.reset();
    endRead(provider);
    anything = true;
  }
  if (anything) changed();
}

void UsageMonitor::endRead(UsageProvider provider) {
  auto& record = records_[provider];
  ++record.generation;
  record.read.reset();
  record.isAskedAgain = false;
  states_[provider].isRefreshing = false;
}

void UsageMonitor::changed() const {
  if (onChange) onChange();
}

}  // namespace nimbo
