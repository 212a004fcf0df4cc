// SPDX-License-Identifier: MIT
#include "platform/linux/loop/sd_event_main_loop.h"

#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <time.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <system_error>
#include <utility>

namespace nimbo {
namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;

void check(int result) {
  if (result < 0) throw std::system_error(-result, std::generic_category(), "main loop");
}

std::uint64_t microsecondsOf(milliseconds duration) {
  return static_cast<std::uint64_t>(microseconds(duration).count());
}

// An accuracy of 0 asks sd-event for its default of 250 ms.
std::uint64_t accuracyFor(milliseconds leeway) { return std::max<std::uint64_t>(microsecondsOf(leeway), 1); }

std::uint64_t monotonicNow() {
  const auto sinceStart = std::chrono::steady_clock::now().time_since_epoch();
  return static_cast<std::uint64_t>(std::chrono::duration_cast<microseconds>(sinceStart).count());
}

/// One registered callback. Handlers keep it alive while they run, because a callback may destroy
/// its own subscription.
struct Registration : std::enable_shared_from_this<Registration> {
  std::function<void()> callback;
  UniqueHandle<SdEventSourceTraits> source;
  std::uint64_t interval = 0;

  void call() {
    const auto keep = shared_from_this();
    callback();
  }
};

Subscription subscribe(std::shared_ptr<Registration> registration) {
  return Subscription([registration = std::move(registration)] { registration->source.reset(); });
}

int onRepeat(sd_event_source* source, std::uint64_t due, void* data) {
  auto* registration = static_cast<Registration*>(data);
  std::uint64_t now = 0;
  sd_event_now(sd_event_source_get_event(source), CLOCK_MONOTONIC, &now);
  // After a long stall the missed beats are dropped, not made up for.
  std::uint64_t next = due + registration->interval;
  if (next <= now) next = now + registration->interval;
  sd_event_source_set_time(source, next);
  sd_event_source_set_enabled(source, SD_EVENT_ONESHOT);
  registration->call();
  return 0;
}

int onTime(sd_event_source* /*source*/, std::uint64_t /*due*/, void* data) {
  static_cast<Registration*>(data)->call();
  return 0;
}

int onReady(sd_event_source* /*source*/, int /*descriptor*/, std::uint32_t /*events*/, void* data) {
  static_cast<Registration*>(data)->call();
  return 0;
}

std::shared_ptr<Registration> makeRegistration(std::function<void()> callback) {
  auto registration = std::make_shared<Registration>();
  registration->callback = std::move(callback);
  return registration;
}

}  // namespace

SdEventMainLoop::SdEventMainLoop() : wakeUp_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  if (!wakeUp_) check(-errno);
  sd_event* event = nullptr;
  check(sd_event_new(&event));
  event_.reset(event);
  wakeUpWatch_ = watch(wakeUp_.get(), [this] { runPosted(); });
}

SdEventMainLoop::~SdEventMainLoop() = default;

void SdEventMainLoop::post(std::function<void()> task) {
  bool first = false;
  {
    const std::lock_guard lock(mutex_);
    first = posted_.empty();
    posted_.push_back(std::move(task));
  }
  if (first) {
    constexpr std::uint64_t kOne = 1;
    // The counter cannot overflow, so the only possible failure is none.
    [[maybe_unused]] const auto written = ::write(wakeUp_.get(), &kOne, sizeof kOne);
  }
}

void SdEventMainLoop::runPosted() {
  std::uint64_t count = 0;
  [[maybe_unused]] const auto read = ::read(wakeUp_.get(), &count, sizeof count);
  std::vector<std::function<void()>> tasks;
  {
    const std::lock_guard lock(mutex_);
    tasks.swap(posted_);
  }
  for (const auto& task : tasks) task();
}

Subscription SdEventMainLoop::every(milliseconds interval, milliseconds leeway, std::function<void()> fire) {
  auto registration = makeRegistration(std::move(fire));
  registration->interval = std::max<std::uint64_t>(microsecondsOf(interval), 1);
  sd_event_source* source = nullptr;
  // Not sd_event_add_time_relative: it counts from sd-event's last turn, which under an outer loop
  // may be long past.
  check(sd_event_add_time(event_.get(), &source, CLOCK_MONOTONIC, monotonicNow() + registration->interval,
                          accuracyFor(leeway), onRepeat, registration.get()));
  registration->source.reset(source);
  return subscribe(std::move(registration));
}

Subscription SdEventMainLoop::at(std::chrono::system_clock::time_point when, milliseconds leeway,
                                 std::function<void()> fire) {
  auto registration = makeRegistration(std::move(fire));
  const auto sinceEpoch = std::chrono::duration_cast<microseconds>(when.time_since_epoch()).count();
  sd_event_source* source = nullptr;
  check(sd_event_add_time(event_.get(), &source, CLOCK_REALTIME,
                          static_cast<std::uint64_t>(std::max<std::int64_t>(sinceEpoch, 1)), accuracyFor(leeway),
                          onTime, registration.get()));
  registration->source.reset(source);
  return subscribe(std::move(registration));
}

Subscription SdEventMainLoop::watch(int descriptor, std::function<void()> ready) {
  auto registration = makeRegistration(std::move(ready));
  sd_event_source* source = nullptr;
  check(sd_event_add_io(event_.get(), &source, descriptor, EPOLLIN, onReady, registration.get()));
  registration->source.reset(source);
  return subscribe(std::move(registration));
}

void SdEventMainLoop::adopt(OuterLoop& outer) { outer_ = &outer; }

void SdEventMainLoop::run() {
  while (!quit_) {
    if (outer_ != nullptr) {
      outer_->run(sd_event_get_fd(event_.get()), [this] { dispatchPending(); });
      break;
    }
    check(sd_event_run(event_.get(), UINT64_MAX));
  }
  quit_ = false;
}

void SdEventMainLoop::quit() {
  quit_ = true;
  if (outer_ != nullptr) outer_->stop();
}

// sd-event's own steps instead of sd_event_run, so that it is left armed: its descriptor then turns
// readable for every source, timers included.
void SdEventMainLoop::dispatchPending() {
  sd_event* const event = event_.get();
  if (sd_event_get_state(event) == SD_EVENT_RUNNING) return;
  while (!quit_) {
    if (sd_event_get_state(event) == SD_EVENT_INITIAL) check(sd_event_prepare(event));
    if (sd_event_get_state(event) == SD_EVENT_ARMED) {
      check(sd_event_wait(event, 0));
      if (sd_event_get_state(event) == SD_EVENT_INITIAL) check(sd_event_prepare(event));
    }
    if (sd_event_get_state(event) != SD_EVENT_PENDING) return;
    check(sd_event_dispatch(event));
  }
}

}  // namespace nimbo
