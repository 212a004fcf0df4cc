// SPDX-License-Identifier: MIT
#include "platform/linux/loop/background_threads.h"

#include <sys/resource.h>
#include <unistd.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <system_error>
#include <thread>

namespace nimbo {
namespace {

constexpr std::chrono::milliseconds kPatience{500};
constexpr int kUtilityNice = 10;

}  // namespace

struct BackgroundThreads::Running {
  std::mutex lock;
  std::condition_variable ended;
  int count = 0;
};

BackgroundThreads::BackgroundThreads() : running_(std::make_shared<Running>()) {}

BackgroundThreads::~BackgroundThreads() {
  std::unique_lock guard(running_->lock);
  running_->ended.wait_for(guard, kPatience, [this] { return running_->count == 0; });
}

void BackgroundThreads::run(const std::function<void()>& work) {
  const auto task = [running = running_, work] {
    setpriority(PRIO_PROCESS, static_cast<id_t>(gettid()), kUtilityNice);
    work();
    const std::scoped_lock guard(running->lock);
    --running->count;
    running->ended.notify_all();
  };
  {
    const std::scoped_lock guard(running_->lock);
    ++running_->count;
  }
  try {
    std::thread(task).detach();
  } catch (const std::system_error&) {
    work();
    const std::scoped_lock guard(running_->lock);
    --running_->count;
  }
}

}  // namespace nimbo
