// SPDX-License-Identifier: MIT
#pragma once

#include <poll.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

#include "platform/main_loop.h"

namespace nimbo {

/// A main loop that is turned by hand: time stands still and nothing runs until the test says so.
/// Subscriptions may outlive it.
class FakeMainLoop final : public MainLoop {
 public:
  using Milliseconds = std::chrono::milliseconds;
  using WallTime = std::chrono::system_clock::time_point;

  struct RepeatingTimer {
    Milliseconds interval{0};
    Milliseconds leeway{0};
    Milliseconds due{0};  ///< on the loop's own clock, which starts at 0
    std::function<void()> fire;
  };

  struct WallTimer {
    WallTime when;
    Milliseconds leeway{0};
    std::function<void()> fire;
  };

  void post(std::function<void()> task) override {
    const std::scoped_lock lock(state_->mutex);
    state_->posted.push_back(std::move(task));
  }

  [[nodiscard]] Subscription every(Milliseconds interval, Milliseconds leeway, std::function<void()> fire) override {
    return add(&State::repeating, RepeatingTimer{interval, leeway, state_->now + interval, std::move(fire)});
  }

  [[nodiscard]] Subscription at(WallTime when, Milliseconds leeway, std::function<void()> fire) override {
    return add(&State::wall, WallTimer{when, leeway, std::move(fire)});
  }

  [[nodiscard]] Subscription watch(int descriptor, std::function<void()> ready) override {
    return add(&State::watches, Watch{descriptor, std::move(ready)});
  }

  [[nodiscard]] std::uint64_t turn() const override { return turn_; }

  /// Runs what is posted until nothing is left or `quit` was called; never waits.
  void run() override {
    ++runs_;
    while (!quit_ && runOne()) {
    }
  }

  void quit() override { quit_ = true; }

  /// Runs everything posted, also what is posted meanwhile; returns how many tasks that were.
  std::size_t runPosted() {
    std::size_t count = 0;
    ++turn_;
    while (runOne()) ++count;
    return count;
  }

  /// Lets time pass for both kinds of timers and fires each exactly when it is due, with what is
  /// posted run after each; `onAdvance` keeps other clocks in step.
  void advance(Milliseconds duration) {
    const Milliseconds end = state_->now + duration;
    runPosted();
    fireDueWallTimers();
    while (const auto next = nextDue(end)) {
      step(std::max(*next - state_->now, Milliseconds{0}));
      fireDueRepeatingTimers();
      fireDueWallTimers();
    }
    step(end - state_->now);
  }

  /// What a system sleep of that length does: only the wall clock goes on.
  void sleep(Milliseconds duration) { setWallClock(state_->wallNow + duration); }

  /// Sets the wall clock, forwards or back, and fires the wall-clock timers that are then due.
  void setWallClock(WallTime now) {
    state_->wallNow = now;
    fireDueWallTimers();
  }

  /// Calls the watches of a descriptor, as if it could be read.
  void makeReady(int descriptor) {
    for (const auto id : keysOf(state_->watches)) {
      const auto found = state_->watches.find(id);
      if (found == state_->watches.end() || found->second.descriptor != descriptor) continue;
      const auto ready = found->second.ready;
      ready();
    }
    runPosted();
  }

  /// Calls the watches whose descriptor really can be read or has hung up.
  void runReadable() {
    for (const auto& watch : valuesOf(state_->watches)) {
      pollfd polled{watch.descriptor, POLLIN, 0};
      if (::poll(&polled, 1, 0) > 0) makeReady(watch.descriptor);
    }
  }

  /// Called before anything fires at the new time.
  std::function<void(Milliseconds step)> onAdvance;

  [[nodiscard]] WallTime wallClock() const { return state_->wallNow; }
  [[nodiscard]] std::vector<RepeatingTimer> repeatingTimers() const { return valuesOf(state_->repeating); }
  [[nodiscard]] std::vector<WallTimer> wallTimers() const { return valuesOf(state_->wall); }
  [[nodiscard]] std::size_t watchCount() const { return state_->watches.size(); }
  [[nodiscard]] std::size_t postedCount() const {
    const std::scoped_lock lock(state_->mutex);
    return state_->posted.size();
  }
  [[nodiscard]] bool hasQuit() const { return quit_; }
  [[nodiscard]] int runs() const { return runs_; }

 private:
  using Id = unsigned;
  struct Watch {
    int descriptor = -1;
    std::function<void()> ready;
  };
  struct State {
    std::mutex mutex;
    std::deque<std::function<void()>> posted;
    Id lastId = 0;
    std::map<Id, RepeatingTimer> repeating;
    std::map<Id, WallTimer> wall;
    std::map<Id, Watch> watches;
    Milliseconds now{0};
    WallTime wallNow{};
  };

  template <class Entry>
  Subscription add(std::map<Id, Entry> State::*entries, Entry entry) {
    const Id id = ++state_->lastId;
    ((*state_).*entries).emplace(id, std::move(entry));
    return Subscription([weak = std::weak_ptr(state_), entries, id] {
      if (const auto state = weak.lock()) ((*state).*entries).erase(id);
    });
  }

  template <class Entry>
  static std::vector<Id> keysOf(const std::map<Id, Entry>& entries) {
    std::vector<Id> ids;
    for (const auto& [id, entry] : entries) ids.push_back(id);
    return ids;
  }

  template <class Entry>
  static std::vector<Entry> valuesOf(const std::map<Id, Entry>& entries) {
    std::vector<Entry> values;
    for (const auto& [id, entry] : entries) values.push_back(entry);
    return values;
  }

  bool runOne() {
    ++turn_;
    std::function<void()> task;
    {
      const std::scoped_lock lock(state_->mutex);
      if (state_->posted.empty()) return false;
      task = std::move(state_->posted.front());
      state_->posted.pop_front();
    }
    task();
    return true;
  }

  void step(Milliseconds duration) {
    if (duration == Milliseconds{0}) return;
    state_->now += duration;
    state_->wallNow += duration;
    if (onAdvance) onAdvance(duration);
  }

  /// The first moment up to `end` at which a timer is due.
  [[nodiscard]] std::optional<Milliseconds> nextDue(Milliseconds end) const {
    std::optional<Milliseconds> next;
    const auto consider = [&](Milliseconds due) {
      if (due <= end && (!next || due < *next)) next = due;
    };
    for (const auto& [id, timer] : state_->repeating) consider(timer.due);
    for (const auto& [id, timer] : state_->wall) {
      consider(state_->now + std::chrono::ceil<Milliseconds>(timer.when - state_->wallNow));
    }
    return next;
  }

  void fireDueRepeatingTimers() {
    for (const auto id : keysOf(state_->repeating)) {
      const auto found = state_->repeating.find(id);
      if (found == state_->repeating.end() || found->second.due > state_->now) continue;
      found->second.due += found->second.interval;
      const auto fire = found->second.fire;
      fire();
      runPosted();
    }
  }

  void fireDueWallTimers() {
    for (const auto id : keysOf(state_->wall)) {
      const auto found = state_->wall.find(id);
      if (found == state_->wall.end() || found->second.when > state_->wallNow) continue;
      const auto fire = std::move(found->second.fire);
      state_->wall.erase(found);
      fire();
      runPosted();
    }
  }

  std::shared_ptr<State> state_ = std::make_shared<State>();
  bool quit_ = false;
  int runs_ = 0;
  std::uint64_t turn_ = 0;
};

}  // namespace nimbo
