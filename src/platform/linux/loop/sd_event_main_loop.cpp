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

template <class Duration>
std::uint64_t microsecondsOf(Duration duration) {
  return static_cast<std::uint64_t>(std::chrono::duration_cast<microseconds>(duration).count());
}

/// One registered callback. Handlers keep it alive while they run, because a callback may destroy
/// its own subscription.
struct Registration : std::enable_shared_from_this<Registration> {
  explicit Registration(std::function<void()> called) : callback(std::move(called)) {}

  void call() {
    const auto keep = shared_from_this();
    callback();
  }

  Subscription subscription() {
    return Subscription([registration = shared_from_this()] { registration->source.reset(); });
  }

  const std::function<void()> callback;
  EventSource source;
  std::uint64_t interval = 0;  // microseconds
};

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

template <class... Details>
int onEvent(sd_event_source* /*source*/, Details... /*details*/, void* data) {
  static_cast<Registration*>(data)->call();
  return 0;
}

void startTimer(sd_event* event, Registration& registration, clockid_t clock, std::uint64_t due, milliseconds leeway,
                sd_event_time_handler_t handler) {
  // An accuracy of 0 asks sd-event for its default of 250 ms.
  const auto accuracy = std::max<std::uint64_t>(microsecondsOf(leeway), 1);
  check(sd_event_add_time(event, registration.source.out(), clock, due, accuracy, handler, &registration));
}

}  // namespace

SdEventMainLoop::SdEventMainLoop() : wakeUp_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  if (!wakeUp_) check(-errno);
  check(sd_event_new(event_.out()));
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
  const auto registration = std::make_shared<Registration>(std::move(fire));
  registration->interval = std::max<std::uint64_t>(microsecondsOf(interval), 1);
  // Not sd_event_add_time_relative: it counts from the beginning of sd-event's turn.
  const std::uint64_t now = microsecondsOf(std::chrono::steady_clock::now().time_since_epoch());
  startTimer(event(), *registration, CLOCK_MONOTONIC, now + registration->interval, leeway, onRepeat);
  return registration->subscription();
}

Subscription SdEventMainLoop::at(std::chrono::system_clock::time_point when, milliseconds leeway,
                                 std::function<void()> fire) {
  const auto registration = std::make_shared<Registration>(std::move(fire));
  const std::uint64_t due =
      microsecondsOf(std::max<std::chrono::system_clock::duration>(when.time_since_epoch(), microseconds(1)));
  startTimer(event(), *registration, CLOCK_REALTIME, due, leeway, onEvent<std::uint64_t>);
  return registration->subscription();
}

Subscription SdEventMainLoop::watch(int descriptor, std::function<void()> ready) {
  const auto registration = std::make_shared<Registration>(std::move(ready));
  check(sd_event_add_io(event(), registration->source.out(), descriptor, EPOLLIN, onEvent<int, std::uint32_t>,
                        registration.get()));
  return registration->subscription();
}

std::uint64_t SdEventMainLoop::turn() const {
  std::uint64_t iteration = 0;
  sd_event_get_iteration(event(), &iteration);
  return iteration;
}

void SdEventMainLoop::run() {
  while (!quit_) check(sd_event_run(event(), UINT64_MAX));
  quit_ = false;
}

void SdEventMainLoop::quit() { quit_ = true; }

}  // namespace nimbo
