// SPDX-License-Identifier: MIT
#include "platform/posix/loop/background_threads.h"

#include <condition_variable>
#include <mutex>
#include <system_error>
#include <thread>

namespace nimbo {

struct BackgroundThreads::Running {
  void change(int by) {
    const std::scoped_lock guard(lock);
    count += by;
    ended.notify_all();
  }

  std::mutex lock;
  std::condition_variable ended;
  int count = 0;
};

BackgroundThreads::BackgroundThreads(UtilityThread utility)
    : running_(std::make_shared<Running>()), utility_(utility) {}

BackgroundThreads::~BackgroundThreads() {
  std::unique_lock guard(running_->lock);
  running_->ended.wait(guard, [this] { return running_->count == 0; });
}

bool BackgroundThreads::endBy(std::chrono::steady_clock::time_point deadline) {
  std::unique_lock guard(running_->lock);
  return running_->ended.wait_until(guard, deadline, [this] { return running_->count == 0; });
}

void BackgroundThreads::run(const std::function<void()>& work) {
  running_->change(+1);
  try {
    std::thread([running = running_, utility = utility_, work] {
      utility({});
      work();
      running->change(-1);
    }).detach();
  } catch (const std::system_error&) {
    work();
    running_->change(-1);
  }
}

}  // namespace nimbo
