// SPDX-License-Identifier: MIT
#include "usage/usage_monitor.h"

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
  abandon(provider);
  nextRefresh_.erase(provider);
  state = {};
  state.enabled = enabled;
  changed();
}

void UsageMonitor::refresh(std::span<const UsageProvider> providers, UsageRequest request) {
  bool anything = false;
  for (const auto provider : kAllUsageProviders) {
    for (const auto wanted : providers) {
      if (wanted == provider && start(provider, request)) anything = true;
    }
  }
  if (anything) changed();
}

bool UsageMonitor::start(UsageProvider provider, UsageRequest request) {
  if (!states_[provider].enabled) return false;
  const bool manual = request == UsageRequest::manual;
  if (tasks_.contains(provider)) {
    if (manual && !interactiveTasks_.contains(provider)) pendingManualRefresh_.insert(provider);
    return false;
  }
  if (!manual && isIn(nextRefresh_, provider)) return false;
  if (isIn(retryNotBefore_, provider)) {
    if (manual)
      states_[provider].message = usage_messages::rateLimitReached(dates_.shortTime(retryNotBefore_[provider].until));
    return manual;
  }
  beginRead(provider, request);
  return true;
}

UsageMonitor::Wait UsageMonitor::waitUntil(Time instant) const {
  using Seconds = std::chrono::duration<double>;
  const Seconds left = Seconds(instant.time_since_epoch()) - Seconds(clock_.now().time_since_epoch());
  return {instant, clock_.uptime() + left};
}

bool UsageMonitor::isIn(const std::map<UsageProvider, Wait>& waits, UsageProvider provider) const {
  const auto wait = waits.find(provider);
  return wait != waits.end() && clock_.now() < wait->second.until && clock_.uptime() < wait->second.untilUptime;
}

void UsageMonitor::beginRead(UsageProvider provider, UsageRequest request) {
  const auto generation = ++generations_[provider];
  states_[provider].isRefreshing = true;
  if (request == UsageRequest::manual) interactiveTasks_.insert(provider);
  const auto& read = provider == UsageProvider::codex ? reads_.codex : reads_.claude;
  tasks_[provider] = read(request, [this, provider, generation](UsageOutcome outcome) {
    finish(provider, generation, std::move(outcome));
  });
}

void UsageMonitor::finish(UsageProvider provider, std::uint64_t generation, UsageOutcome outcome) {
  if (generation != generations_[provider]) return;
  auto& state = states_[provider];
  if (outcome) {
    state.snapshot = std::move(*outcome);
    state.message.reset();
  } else {
    state.message = std::move(outcome.error().message);
    if (outcome.error().retryNotBefore) retryNotBefore_[provider] = waitUntil(*outcome.error().retryNotBefore);
  }
  nextRefresh_[provider] = waitUntil(clock_.now() + kRefreshInterval);
  state.isRefreshing = false;
  tasks_.erase(provider);
  interactiveTasks_.erase(provider);
  const bool again = pendingManualRefresh_.erase(provider) > 0;
  changed();
  if (again) refresh(std::span(&provider, 1), UsageRequest::manual);
}

void UsageMonitor::stop() {
  bool anything = false;
  for (const auto provider : kAllUsageProviders) {
    if (!tasks_.contains(provider)) continue;
    abandon(provider);
    anything = true;
  }
  if (anything) changed();
}

void UsageMonitor::abandon(UsageProvider provider) {
  ++generations_[provider];
  tasks_.erase(provider);
  interactiveTasks_.erase(provider);
  pendingManualRefresh_.erase(provider);
  states_[provider].isRefreshing = false;
}

void UsageMonitor::changed() const {
  if (onChange) onChange();
}

}  // namespace nimbo
