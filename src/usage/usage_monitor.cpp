// SPDX-License-Identifier: MIT
#include "usage/usage_monitor.h"

#include <algorithm>
#include <utility>

#include "usage/usage_messages.h"

namespace nimbo {
namespace {

constexpr std::chrono::seconds kRefreshInterval{300};

}  // namespace

UsageMonitor::UsageMonitor(Reads reads, const Clock& clock, const Dates& dates)
    : reads_(std::move(reads)), clock_(clock), dates_(dates) {
  for (const auto provider : kAllUsageProviders) states_[provider];
}

void UsageMonitor::setEnabled(UsageProvider provider, bool enabled) {
  auto& state = states_[provider];
  if (state.enabled == enabled) return;
  endRead(provider);
  records_[provider].nextRefresh = {};
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
  if (!manual && lasts(record.nextRefresh)) return false;
  if (lasts(record.rateLimit)) {
    if (manual) state.message = usage_messages::rateLimitReached(dates_.shortTime(record.rateLimit.until));
    return manual;
  }
  beginRead(provider, request);
  return true;
}

UsageMonitor::Wait UsageMonitor::waitUntil(UsageTime instant) const {
  using Seconds = std::chrono::duration<double>;
  const Seconds left = Seconds(instant.time_since_epoch()) - Seconds(clock_.now().time_since_epoch());
  return {instant, clock_.uptime() + left};
}

bool UsageMonitor::lasts(const Wait& wait) const {
  return clock_.now() < wait.until && clock_.uptime() < wait.untilUptime;
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
  } else {
    state.message = std::move(outcome.error().message);
    if (outcome.error().retryNotBefore) record.rateLimit = waitUntil(*outcome.error().retryNotBefore);
  }
  record.nextRefresh = waitUntil(clock_.now() + kRefreshInterval);
  const bool again = record.isAskedAgain;
  endRead(provider);
  changed();
  if (again) refresh(std::span(&provider, 1), UsageRequest::manual);
}

void UsageMonitor::stop() {
  bool anything = false;
  for (const auto provider : kAllUsageProviders) {
    if (!states_[provider].isRefreshing) continue;
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
