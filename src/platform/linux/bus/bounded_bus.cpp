// SPDX-License-Identifier: MIT
#include "platform/linux/bus/bounded_bus.h"

#include <cstdint>

namespace nimbo {
namespace {

Event newLoop() {
  Event loop;
  sd_event_new(loop.out());
  return loop;
}

}  // namespace

BoundedBus::BoundedBus(const std::string& address)
    : ownLoop_(newLoop()), connection_(ownLoop_.get(), ownLoop_ ? address : std::string()) {}

bool BoundedBus::turnUntil(Deadline deadline, const std::function<bool()>& done) const {
  using std::chrono::microseconds;
  while (!done()) {
    const auto left = std::chrono::ceil<microseconds>(deadline - std::chrono::steady_clock::now());
    if (left <= microseconds::zero() || !ownLoop_ || get() == nullptr) return false;
    if (sd_event_run(ownLoop_.get(), static_cast<std::uint64_t>(left.count())) < 0) return false;
  }
  return true;
}

void BoundedBus::attach(sd_event* event) {
  if (get() == nullptr) return;
  sd_bus_detach_event(get());
  sd_bus_attach_event(get(), event, SD_EVENT_PRIORITY_NORMAL);
  ownLoop_.reset();
}

}  // namespace nimbo
