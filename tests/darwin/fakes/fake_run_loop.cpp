// SPDX-License-Identifier: MIT
#include "darwin/fakes/fake_run_loop.h"

#include <dispatch/dispatch.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/eventfd.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <mutex>
#include <optional>

using namespace nimbo::fake;
using std::chrono::nanoseconds;
using std::chrono::steady_clock;
using std::chrono::system_clock;

/// What may be part of the run loop, which holds it until it is invalidated.
struct RunLoopPart : Object {
  RunLoopPart() : Object(kRunLoopObject) {}
  bool isValid = true;
};
struct __CFRunLoopSource : RunLoopPart {
  CFRunLoopSourceContext context{};
  Held descriptor;  // of one that watches a descriptor
  bool isSignaled = false;
};
struct __CFRunLoopObserver : RunLoopPart {
  CFOptionFlags activities = 0;
  CFRunLoopObserverCallBack callout = nullptr;
  void* info = nullptr;
};
struct __CFRunLoopTimer : RunLoopPart {
  steady_clock::time_point due;
  nanoseconds interval{};
  CFRunLoopTimerCallBack callout = nullptr;
  void* info = nullptr;
};
struct __CFFileDescriptor : RunLoopPart {
  int descriptor = -1;
  bool isEnabled = false;
  CFFileDescriptorCallBack callout = nullptr;
  void* info = nullptr;
  CFRunLoopSourceRef source = nullptr;  // which holds this
};
struct __CFRunLoop : Object {
  __CFRunLoop() : Object(kRunLoopObject, Count::no) {}

  template <class Part>
  std::vector<std::pair<Held, Part*>> parts() {
    const std::scoped_lock lock(mutex);
    std::vector<std::pair<Held, Part*>> found;
    for (const auto& entry : all) {
      auto* const part = const_cast<RunLoopPart*>(static_cast<const RunLoopPart*>(&objectOf(entry.get())));
      if (auto* const wanted = dynamic_cast<Part*>(part)) found.emplace_back(entry, wanted);
    }
    return found;
  }

  std::recursive_mutex mutex;
  std::vector<Held> all;
  const int wakeUp = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
  bool isStopped = false;
};

struct DispatchSource : dispatch_source_s {
  system_clock::time_point due = system_clock::time_point::max();
  int signals = -1;  // of one that hears of a signal
  dispatch_function_t handler = nullptr;
  void* context = nullptr;
  bool isResumed = false;
  bool isCanceled = false;
};

namespace {

__CFRunLoop& mainLoop() {
  static __CFRunLoop loop;
  return loop;
}

std::vector<DispatchSource*>& dispatchSources() {
  static std::vector<DispatchSource*> timers;
  return timers;
}

nanoseconds wallClockOffset{};
TimerSettings timerMadeLast{};
nanoseconds leewaySetLast{};

system_clock::time_point wallClock() {
  return system_clock::now() + std::chrono::duration_cast<system_clock::duration>(wallClockOffset);
}

void add(RunLoopPart* part) {
  if (!part->isValid) return;
  const std::scoped_lock lock(mainLoop().mutex);
  mainLoop().all.emplace_back(part);
}

void invalidate(RunLoopPart* part) {
  const std::scoped_lock lock(mainLoop().mutex);
  part->isValid = false;
  std::erase_if(mainLoop().all, [&](const Held& held) { return &objectOf(held.get()) == part; });
}

void tell(CFRunLoopActivity activity) {
  for (const auto& [held, observer] : mainLoop().parts<__CFRunLoopObserver>()) {
    if (observer->isValid && (observer->activities & activity) != 0) {
      observer->callout(observer, activity, observer->info);
    }
  }
}

bool performSources() {
  bool any = false;
  for (const auto& [held, source] : mainLoop().parts<__CFRunLoopSource>()) {
    {
      const std::scoped_lock lock(mainLoop().mutex);
      if (!source->isValid || !std::exchange(source->isSignaled, false)) continue;
    }
    source->context.perform(source->context.info);
    any = true;
  }
  return any;
}

void fireTimers() {
  for (const auto& [held, timer] : mainLoop().parts<__CFRunLoopTimer>()) {
    const auto now = steady_clock::now();
    if (!timer->isValid || timer->due > now) continue;
    timer->due += timer->interval * ((now - timer->due) / timer->interval + 1);  // beats that were missed are dropped
    timer->callout(timer, timer->info);
  }
}

bool hasSignal(const DispatchSource& source) {
  signalfd_siginfo info{};
  return source.signals >= 0 && ::read(source.signals, &info, sizeof info) == sizeof info;
}

void fireDispatched() {
  for (auto* const source : std::vector(dispatchSources())) {
    if (std::ranges::find(dispatchSources(), source) == dispatchSources().end()) continue;  // released meanwhile
    if (!source->isResumed || source->isCanceled || (source->due > wallClock() && !hasSignal(*source))) continue;
    source->due = system_clock::time_point::max();
    source->handler(source->context);
  }
}

std::optional<nanoseconds> untilNextTimer() {
  std::optional<nanoseconds> next;
  const auto consider = [&](nanoseconds wait) { next = std::max(nanoseconds(0), next ? std::min(*next, wait) : wait); };
  for (const auto& [held, timer] : mainLoop().parts<__CFRunLoopTimer>()) consider(timer->due - steady_clock::now());
  for (const auto* const timer : dispatchSources()) {
    if (timer->isResumed && !timer->isCanceled && timer->due != system_clock::time_point::max()) {
      consider(timer->due - wallClock());
    }
  }
  return next;
}

void fireDescriptors(const std::vector<std::pair<pollfd, Held>>& watched) {
  for (const auto& [poll, held] : watched) {
    auto* const descriptor =
        const_cast<__CFFileDescriptor*>(static_cast<const __CFFileDescriptor*>(&objectOf(held.get())));
    if (poll.revents == 0 || !descriptor->isValid) continue;
    descriptor->isEnabled = false;
    descriptor->callout(descriptor, kCFFileDescriptorReadCallBack, descriptor->info);
  }
}

void wait(std::optional<nanoseconds> longest) {
  std::vector<pollfd> polled{{mainLoop().wakeUp, POLLIN, 0}};
  std::vector<Held> descriptors;
  for (const auto& [held, source] : mainLoop().parts<__CFRunLoopSource>()) {
    if (source->descriptor.get() == nullptr) continue;
    const auto& descriptor = static_cast<const __CFFileDescriptor&>(objectOf(source->descriptor.get()));
    if (!descriptor.isEnabled) continue;
    polled.push_back({descriptor.descriptor, POLLIN, 0});
    descriptors.push_back(source->descriptor);
  }
  for (const auto* const source : dispatchSources()) {
    if (source->signals >= 0) polled.push_back({source->signals, POLLIN, 0});
  }
  timespec time{};
  if (longest) time = {static_cast<time_t>(longest->count() / 1'000'000'000), longest->count() % 1'000'000'000};
  ppoll(polled.data(), polled.size(), longest ? &time : nullptr, nullptr);
  std::uint64_t count = 0;
  [[maybe_unused]] const auto read = ::read(mainLoop().wakeUp, &count, sizeof count);
  std::vector<std::pair<pollfd, Held>> watched;
  for (std::size_t at = 0; at < descriptors.size(); ++at) watched.emplace_back(polled[at + 1], descriptors[at]);
  fireDescriptors(watched);
}

}  // namespace

namespace nimbo::fake {

void moveWallClock(nanoseconds forward) {
  wallClockOffset += forward;
  CFRunLoopWakeUp(&mainLoop());
}
TimerSettings lastTimer() { return timerMadeLast; }
nanoseconds lastLeeway() { return leewaySetLast; }

}  // namespace nimbo::fake

extern "C" {

static const __CFString kCommonModes("kCFRunLoopCommonModes", Object::Count::no);
const CFRunLoopMode kCFRunLoopCommonModes = &kCommonModes;
const CFTimeInterval kCFAbsoluteTimeIntervalSince1970 = 978307200;
CFAbsoluteTime CFAbsoluteTimeGetCurrent() {
  return std::chrono::duration<double>(wallClock().time_since_epoch()).count() - kCFAbsoluteTimeIntervalSince1970;
}

CFRunLoopRef CFRunLoopGetMain() { return &mainLoop(); }
void CFRunLoopWakeUp(CFRunLoopRef loop) {
  constexpr std::uint64_t kOne = 1;
  [[maybe_unused]] const auto written = ::write(loop->wakeUp, &kOne, sizeof kOne);
}
// One that does not run is not stopped.
void CFRunLoopStop(CFRunLoopRef loop) {
  loop->isStopped = true;
  CFRunLoopWakeUp(loop);
}
void CFRunLoopRun() {
  mainLoop().isStopped = false;
  while (!mainLoop().isStopped && !mainLoop().all.empty()) {
    tell(kCFRunLoopBeforeTimers);
    const bool hasWorked = performSources();
    if (mainLoop().isStopped) break;
    wait(hasWorked ? nanoseconds(0) : untilNextTimer());
    if (!hasWorked) tell(kCFRunLoopAfterWaiting);
    fireTimers();
    fireDispatched();
  }
}

CFRunLoopSourceRef CFRunLoopSourceCreate(CFAllocatorRef /*allocator*/, CFIndex /*order*/,
                                         CFRunLoopSourceContext* context) {
  auto* const source = new __CFRunLoopSource;
  source->context = *context;
  return source;
}
void CFRunLoopAddSource(CFRunLoopRef /*loop*/, CFRunLoopSourceRef source, CFRunLoopMode mode) {
  EXPECT_EQ(mode, kCFRunLoopCommonModes) << "it would stand still while a menu is open";
  add(source);
}
void CFRunLoopSourceSignal(CFRunLoopSourceRef source) {
  const std::scoped_lock lock(mainLoop().mutex);
  source->isSignaled = true;
}
void CFRunLoopSourceInvalidate(CFRunLoopSourceRef source) { invalidate(source); }

CFRunLoopObserverRef CFRunLoopObserverCreate(CFAllocatorRef /*allocator*/, CFOptionFlags activities,
                                             Boolean /*repeats*/, CFIndex /*order*/, CFRunLoopObserverCallBack callout,
                                             CFRunLoopObserverContext* context) {
  auto* const observer = new __CFRunLoopObserver;
  observer->activities = activities;
  observer->callout = callout;
  observer->info = context->info;
  return observer;
}
void CFRunLoopAddObserver(CFRunLoopRef /*loop*/, CFRunLoopObserverRef observer, CFRunLoopMode /*mode*/) {
  add(observer);
}
void CFRunLoopObserverInvalidate(CFRunLoopObserverRef observer) { invalidate(observer); }

// A date is turned into a time of the monotonic clock when the timer is made, as there.
CFRunLoopTimerRef CFRunLoopTimerCreate(CFAllocatorRef /*allocator*/, CFAbsoluteTime fireDate, CFTimeInterval interval,
                                       CFOptionFlags /*flags*/, CFIndex /*order*/, CFRunLoopTimerCallBack callout,
                                       CFRunLoopTimerContext* context) {
  using Seconds = std::chrono::duration<double>;
  auto* const timer = new __CFRunLoopTimer;
  timer->due = steady_clock::now() + std::chrono::ceil<nanoseconds>(Seconds(fireDate - CFAbsoluteTimeGetCurrent()));
  timer->interval = std::chrono::ceil<nanoseconds>(Seconds(interval));
  timer->callout = callout;
  timer->info = context->info;
  timerMadeLast = {Seconds(interval), Seconds(0)};
  return timer;
}
void CFRunLoopAddTimer(CFRunLoopRef /*loop*/, CFRunLoopTimerRef timer, CFRunLoopMode mode) {
  EXPECT_EQ(mode, kCFRunLoopCommonModes) << "it would stand still while a menu is open";
  add(timer);
}
void CFRunLoopTimerSetTolerance(CFRunLoopTimerRef /*timer*/, CFTimeInterval tolerance) {
  timerMadeLast.tolerance = std::chrono::duration<double>(tolerance);
}
void CFRunLoopTimerInvalidate(CFRunLoopTimerRef timer) { invalidate(timer); }

CFFileDescriptorRef CFFileDescriptorCreate(CFAllocatorRef /*allocator*/, CFFileDescriptorNativeDescriptor native,
                                           Boolean closeOnInvalidate, CFFileDescriptorCallBack callout,
                                           const CFFileDescriptorContext* context) {
  EXPECT_FALSE(closeOnInvalidate) << "descriptors are their owners'";
  auto* const descriptor = new __CFFileDescriptor;
  descriptor->descriptor = native;
  descriptor->callout = callout;
  descriptor->info = context->info;
  return descriptor;
}
void CFFileDescriptorEnableCallBacks(CFFileDescriptorRef descriptor, CFOptionFlags callBackTypes) {
  EXPECT_TRUE(descriptor->isValid);
  descriptor->isEnabled = (callBackTypes & kCFFileDescriptorReadCallBack) != 0;
}
void CFFileDescriptorInvalidate(CFFileDescriptorRef descriptor) {
  descriptor->isValid = false;
  descriptor->isEnabled = false;
  if (auto* const source = std::exchange(descriptor->source, nullptr)) {
    const Held keep(source);
    invalidate(source);
    source->descriptor = Held();
  }
}
Boolean CFFileDescriptorIsValid(CFFileDescriptorRef descriptor) { return descriptor->isValid; }
CFRunLoopSourceRef CFFileDescriptorCreateRunLoopSource(CFAllocatorRef /*allocator*/, CFFileDescriptorRef descriptor,
                                                       CFIndex /*order*/) {
  auto* const source = new __CFRunLoopSource;
  source->descriptor = Held(descriptor);
  descriptor->source = source;
  return source;
}

// Timers and signals on the main queue are all that is known of libdispatch.
struct dispatch_source_type_s {
  int unused;
};
const struct dispatch_source_type_s _dispatch_source_type_timer {};
const struct dispatch_source_type_s _dispatch_source_type_signal {};
dispatch_queue_t dispatch_get_main_queue() {
  static dispatch_queue_s queue;
  return &queue;
}
// As there: times of the wall clock have the highest bit set.
dispatch_time_t dispatch_walltime(const struct timespec* when, int64_t delta) {
  return static_cast<dispatch_time_t>(-(when->tv_sec * 1'000'000'000 + when->tv_nsec + delta));
}
dispatch_source_t dispatch_source_create(dispatch_source_type_t type, uintptr_t handle, uintptr_t /*mask*/,
                                         dispatch_queue_t queue) {
  EXPECT_TRUE(type == DISPATCH_SOURCE_TYPE_TIMER || type == DISPATCH_SOURCE_TYPE_SIGNAL);
  EXPECT_EQ(queue, dispatch_get_main_queue());
  dispatchSources().push_back(new DispatchSource);
  ++references;
  if (type == DISPATCH_SOURCE_TYPE_SIGNAL) {
    struct sigaction action {};
    ::sigaction(static_cast<int>(handle), nullptr, &action);
    EXPECT_NE(action.sa_handler, SIG_DFL) << "what the signal does by itself still happens";
    // Blocked, because a signal that is handled is seen by nobody else here.
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, static_cast<int>(handle));
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
    dispatchSources().back()->signals = ::signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK);
  }
  return dispatchSources().back();
}
void dispatch_source_set_timer(dispatch_source_t source, dispatch_time_t start, uint64_t interval, uint64_t leeway) {
  EXPECT_EQ(interval, DISPATCH_TIME_FOREVER);
  static_cast<DispatchSource*>(source)->due = system_clock::time_point(
      std::chrono::duration_cast<system_clock::duration>(nanoseconds(-static_cast<int64_t>(start))));
  leewaySetLast = nanoseconds(leeway);
}
void dispatch_source_set_event_handler_f(dispatch_source_t source, dispatch_function_t handler) {
  static_cast<DispatchSource*>(source)->handler = handler;
}
void dispatch_set_context(dispatch_object_t object, void* context) {
  static_cast<DispatchSource*>(object)->context = context;
}
void dispatch_resume(dispatch_object_t object) { static_cast<DispatchSource*>(object)->isResumed = true; }
void dispatch_source_cancel(dispatch_source_t source) { static_cast<DispatchSource*>(source)->isCanceled = true; }
void dispatch_release(dispatch_object_t object) {
  auto* const source = static_cast<DispatchSource*>(object);
  EXPECT_TRUE(source->isResumed) << "releasing a suspended source ends the program";
  EXPECT_TRUE(source->isCanceled) << "it would go on";
  std::erase(dispatchSources(), source);
  if (source->signals >= 0) ::close(source->signals);
  delete source;
  --references;
}

}  // extern "C"
