// SPDX-License-Identifier: MIT
#include "platform/darwin/loop/cf_main_loop.h"

#include <time.h>

#include <algorithm>
#include <memory>
#include <utility>

#include "platform/darwin/loop/dispatch_source.h"

namespace nimbo {
namespace {

using std::chrono::milliseconds;
using std::chrono::nanoseconds;
using std::chrono::system_clock;

double secondsOf(milliseconds duration) { return std::chrono::duration<double>(duration).count(); }

struct FileDescriptorTraits : RunLoopPartTraits<CFFileDescriptorRef, CFFileDescriptorInvalidate> {};

/// A callback and what calls it. Handlers keep it alive while they run, because a callback may destroy its own
/// subscription.
template <class Source>
struct Registration : std::enable_shared_from_this<Registration<Source>> {
  explicit Registration(std::function<void()> called) : callback(std::move(called)) {}

  static void call(void* info) {
    const auto keep = static_cast<Registration*>(info)->shared_from_this();
    keep->callback();
  }

  Subscription subscription() {
    return Subscription([registration = this->shared_from_this()] { registration->source.reset(); });
  }

  const std::function<void()> callback;
  Source source;
};

using Timer = Registration<UniqueHandle<RunLoopPartTraits<CFRunLoopTimerRef, CFRunLoopTimerInvalidate>>>;
using WallTimer = Registration<DispatchSource>;
using Watch = Registration<UniqueHandle<FileDescriptorTraits>>;

void onTimer(CFRunLoopTimerRef /*timer*/, void* info) { Timer::call(info); }

void onReadable(CFFileDescriptorRef descriptor, CFOptionFlags /*types*/, void* info) {
  const auto keep = retained(descriptor);
  Watch::call(info);
  if (CFFileDescriptorIsValid(descriptor)) CFFileDescriptorEnableCallBacks(descriptor, kCFFileDescriptorReadCallBack);
}

void onTurn(CFRunLoopObserverRef /*observer*/, CFRunLoopActivity /*activity*/, void* info) {
  ++*static_cast<std::uint64_t*>(info);
}

}  // namespace

CfMainLoop::CfMainLoop(Runner runner) : runner_(std::move(runner)) {
  CFRunLoopSourceContext context{};
  context.info = this;
  context.perform = [](void* info) { static_cast<CfMainLoop*>(info)->runPosted(); };
  wakeUp_.reset(CFRunLoopSourceCreate(kCFAllocatorDefault, 0, &context));
  CFRunLoopAddSource(CFRunLoopGetMain(), wakeUp_.get(), kCFRunLoopCommonModes);

  CFRunLoopObserverContext counter{};
  counter.info = &turn_;
  turns_.reset(CFRunLoopObserverCreate(kCFAllocatorDefault, kCFRunLoopBeforeTimers | kCFRunLoopAfterWaiting,
                                       /*repeats=*/true, 0, onTurn, &counter));
  CFRunLoopAddObserver(CFRunLoopGetMain(), turns_.get(), kCFRunLoopCommonModes);
}

void CfMainLoop::post(std::function<void()> task) {
  {
    const std::lock_guard lock(mutex_);
    posted_.push_back(std::move(task));
  }
  CFRunLoopSourceSignal(wakeUp_.get());
  CFRunLoopWakeUp(CFRunLoopGetMain());
}

void CfMainLoop::runPosted() {
  std::vector<std::function<void()>> tasks;
  {
    const std::lock_guard lock(mutex_);
    tasks.swap(posted_);
  }
  for (const auto& task : tasks) task();
}

Subscription CfMainLoop::every(milliseconds interval, milliseconds leeway, std::function<void()> fire) {
  const auto timer = std::make_shared<Timer>(std::move(fire));
  const double seconds = secondsOf(std::max(interval, milliseconds(1)));
  CFRunLoopTimerContext context{};
  context.info = timer.get();
  timer->source.reset(CFRunLoopTimerCreate(kCFAllocatorDefault, CFAbsoluteTimeGetCurrent() + seconds, seconds, 0, 0,
                                           onTimer, &context));
  CFRunLoopTimerSetTolerance(timer->source.get(), secondsOf(leeway));
  CFRunLoopAddTimer(CFRunLoopGetMain(), timer->source.get(), kCFRunLoopCommonModes);
  return timer->subscription();
}

// Not a CFRunLoopTimer: it turns its date into a time of the clock that stands still during sleep.
Subscription CfMainLoop::at(system_clock::time_point when, milliseconds leeway, std::function<void()> fire) {
  const auto timer = std::make_shared<WallTimer>(std::move(fire));
  const auto since1970 = std::max(when.time_since_epoch(), system_clock::duration(1));
  const auto seconds = std::chrono::floor<std::chrono::seconds>(since1970);
  timespec time{};
  time.tv_sec = static_cast<time_t>(seconds.count());
  time.tv_nsec = static_cast<long>(nanoseconds(since1970 - seconds).count());
  auto* const source = dispatch_source_create(DISPATCH_SOURCE_TYPE_TIMER, 0, 0, dispatch_get_main_queue());
  timer->source.reset(source);
  dispatch_set_context(source, timer.get());
  dispatch_source_set_event_handler_f(source, WallTimer::call);
  dispatch_source_set_timer(source, dispatch_walltime(&time, 0), DISPATCH_TIME_FOREVER,
                            static_cast<std::uint64_t>(nanoseconds(leeway).count()));
  dispatch_resume(source);
  return timer->subscription();
}

Subscription CfMainLoop::watch(int descriptor, std::function<void()> ready) {
  const auto watch = std::make_shared<Watch>(std::move(ready));
  CFFileDescriptorContext context{};
  context.info = watch.get();
  watch->source.reset(
      CFFileDescriptorCreate(kCFAllocatorDefault, descriptor, /*closeOnInvalidate=*/false, onReadable, &context));
  CFFileDescriptorEnableCallBacks(watch->source.get(), kCFFileDescriptorReadCallBack);
  const CfObject<CFRunLoopSourceRef> source(
      CFFileDescriptorCreateRunLoopSource(kCFAllocatorDefault, watch->source.get(), 0));
  CFRunLoopAddSource(CFRunLoopGetMain(), source.get(), kCFRunLoopCommonModes);
  return watch->subscription();
}

void CfMainLoop::run() {
  while (!quit_) runner_.run();
  quit_ = false;
}

void CfMainLoop::quit() {
  quit_ = true;
  runner_.stop();
}

}  // namespace nimbo
