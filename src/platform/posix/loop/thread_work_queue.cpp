// SPDX-License-Identifier: MIT
#include "platform/posix/loop/thread_work_queue.h"

#include <system_error>
#include <utility>

namespace nimbo {

ThreadWorkQueue::ThreadWorkQueue(std::string label, MainLoop& loop, UtilityThread utility)
    : label_(std::move(label)), loop_(loop), utility_(utility) {}

ThreadWorkQueue::~ThreadWorkQueue() {
  {
    const std::lock_guard lock(mutex_);
    stopping_ = true;
  }
  if (thread_.joinable()) thread_.join();
}

bool ThreadWorkQueue::endBy(std::chrono::steady_clock::time_point deadline) {
  std::unique_lock lock(mutex_);
  stopping_ = true;
  return idle_.wait_until(lock, deadline, [this] { return !working_; });
}

void ThreadWorkQueue::async(std::function<void()> job) {
  const std::lock_guard lock(mutex_);
  jobs_.push_back(std::move(job));
  startThread();
}

// Under mutex_.
void ThreadWorkQueue::startThread() {
  if (working_ || stopping_) return;
  if (thread_.joinable()) thread_.join();  // which does not wait, as that one needs the mutex no more
  try {
    thread_ = std::thread([this] { work(); });
    working_ = true;
  } catch (const std::system_error&) {
    loop_.post(lifetime_.guard([this] {
      retry_.later([this] {
        const std::lock_guard lock(mutex_);
        startThread();
        if (working_) retry_.succeeded();
      });
    }));
  }
}

void ThreadWorkQueue::work() {
  utility_(label_);
  std::unique_lock lock(mutex_);
  while (!stopping_ && !jobs_.empty()) {
    auto job = std::move(jobs_.front());
    jobs_.pop_front();
    lock.unlock();
    job();
    job = nullptr;  // what it captured is let go without the lock
    lock.lock();
  }
  working_ = false;
  idle_.notify_all();
}

}  // namespace nimbo
