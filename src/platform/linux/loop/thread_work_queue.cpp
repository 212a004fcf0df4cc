// SPDX-License-Identifier: MIT
#include "platform/linux/loop/thread_work_queue.h"

#include <pthread.h>
#include <sys/resource.h>
#include <unistd.h>

#include <system_error>
#include <utility>

namespace nimbo {

ThreadWorkQueue::ThreadWorkQueue(std::string label) : label_(std::move(label)) {}

ThreadWorkQueue::~ThreadWorkQueue() {
  {
    const std::lock_guard lock(mutex_);
    stopping_ = true;
  }
  changed_.notify_one();
  if (thread_.joinable()) thread_.join();
}

void ThreadWorkQueue::async(std::function<void()> job) {
  {
    const std::lock_guard lock(mutex_);
    jobs_.push_back(std::move(job));
    try {
      if (!thread_.joinable()) thread_ = std::thread([this] { work(); });
    } catch (const std::system_error&) {
      return;  // no thread can be made now: the job waits for the next one
    }
  }
  changed_.notify_one();
}

void ThreadWorkQueue::work() {
  constexpr int kUtilityNice = 10;
  pthread_setname_np(pthread_self(), label_.substr(0, 15).c_str());
  // On Linux a thread has a nice value of its own, addressed by its thread id.
  setpriority(PRIO_PROCESS, static_cast<id_t>(gettid()), kUtilityNice);

  std::unique_lock lock(mutex_);
  for (;;) {
    changed_.wait(lock, [this] { return stopping_ || !jobs_.empty(); });
    if (stopping_) return;
    auto job = std::move(jobs_.front());
    jobs_.pop_front();
    lock.unlock();
    job();
    job = nullptr;  // what it captured is let go without the lock
    lock.lock();
  }
}

}  // namespace nimbo
