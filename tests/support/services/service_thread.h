// SPDX-License-Identifier: MIT
#pragma once

#include <sys/epoll.h>
#include <sys/eventfd.h>

#include <chrono>
#include <deque>
#include <functional>
#include <future>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <thread>
#include <utility>

#include "platform/posix/files/unique_fd.h"
#include "support/services/bus_peer.h"

namespace nimbo {

/// A thread for the other programs of a test: code under test that waits for their answers blocks
/// the test's own thread.
class ServiceThread {
 public:
  ServiceThread() : wakeUp_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)), thread_([this] { work(); }) {}
  ~ServiceThread() {
    thaw();
    run([this] { over_ = true; });
    thread_.join();
  }
  ServiceThread(const ServiceThread&) = delete;
  ServiceThread& operator=(const ServiceThread&) = delete;

  /// For `run` only.
  [[nodiscard]] BusLoop& loop() { return loop_; }

  /// Runs `task` on the thread and waits for its end.
  void run(std::function<void()> task) {
    if (post(std::move(task)).wait_for(std::chrono::seconds(20)) != std::future_status::ready) {
      throw std::runtime_error("the services hang");
    }
  }

  /// The services hang, like stopped processes, until `thaw`.
  void freeze() {
    thawed_.emplace();
    std::promise<void> frozen;
    post([&frozen, until = thawed_->get_future().share()] {
      frozen.set_value();
      until.wait();
    });
    frozen.get_future().wait();
  }
  void thaw() {
    if (thawed_) thawed_->set_value();
    thawed_.reset();
  }

 private:
  std::future<void> post(std::function<void()> task) {
    std::packaged_task<void()> packaged(std::move(task));
    auto done = packaged.get_future();
    {
      const std::scoped_lock lock(mutex_);
      tasks_.push_back(std::move(packaged));
    }
    eventfd_write(wakeUp_.get(), 1);
    return done;
  }

  // Tasks run between the loop's turns, because they may turn it themselves.
  void work() {
    sd_event_source* source = nullptr;
    const auto wake = [](sd_event_source*, int descriptor, std::uint32_t, void*) {
      eventfd_t count = 0;
      return eventfd_read(descriptor, &count);
    };
    sd_event_add_io(loop_.event(), &source, wakeUp_.get(), EPOLLIN, wake, nullptr);
    const EventSource wakeSource(source);
    while (!over_) {
      sd_event_run(loop_.event(), UINT64_MAX);
      while (auto task = next()) (*task)();
    }
  }

  std::optional<std::packaged_task<void()>> next() {
    const std::scoped_lock lock(mutex_);
    if (tasks_.empty()) return std::nullopt;
    auto task = std::move(tasks_.front());
    tasks_.pop_front();
    return task;
  }

  BusLoop loop_;
  UniqueFd wakeUp_;
  bool over_ = false;
  std::optional<std::promise<void>> thawed_;
  std::mutex mutex_;
  std::deque<std::packaged_task<void()>> tasks_;  // guarded by mutex_
  std::thread thread_;
};

}  // namespace nimbo
