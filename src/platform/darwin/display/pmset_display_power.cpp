// SPDX-License-Identifier: MIT
#include "platform/darwin/display/pmset_display_power.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>

#include <utility>

#include "platform/darwin/machine/close_by_default.h"
#include "platform/posix/processes/session_spawn.h"

namespace nimbo {
namespace {

constexpr std::chrono::milliseconds kLook{50};

int withoutStreams(posix_spawn_file_actions_t* steps) {
  int error = ::posix_spawn_file_actions_addopen(steps, STDIN_FILENO, "/dev/null", O_RDWR, 0);
  for (const int output : {STDOUT_FILENO, STDERR_FILENO}) {
    if (error == 0) error = ::posix_spawn_file_actions_adddup2(steps, STDIN_FILENO, output);
  }
  return error;
}

}  // namespace

Result<Subscription, DisplayPowerError> PmsetDisplayPower::sleepNow(std::function<void()> failed) {
  char* noVariables = nullptr;
  const auto pid = spawnSession({tool_, {tool_, "displaysleepnow"}, &noVariables}, closeByDefault, withoutStreams);
  if (!pid) return tl::unexpected(DisplayPowerError{pid.error().message() + "."});
  const auto& run = runs_.emplace_back(std::make_shared<Run>(Run{*pid, std::move(failed)}));
  if (!timer_) timer_ = loop_.every(kLook, kLook, [this] { look(); });
  return Subscription([weak = std::weak_ptr(run)] {
    const auto running = weak.lock();
    if (!running) return;
    running->failed = nullptr;
    ::kill(running->pid, SIGTERM);
  });
}

// What is told may destroy this.
void PmsetDisplayPower::look() {
  std::vector<std::shared_ptr<Run>> failures;
  std::erase_if(runs_, [&](const auto& run) {
    int status = 0;
    const pid_t ended = ::waitpid(run->pid, &status, WNOHANG);
    if (ended == 0) return false;
    if (ended < 0 || status != 0) failures.push_back(run);
    return true;
  });
  if (runs_.empty()) timer_.reset();
  for (const auto& run : failures) {
    if (const auto failed = std::exchange(run->failed, nullptr)) failed();
  }
}

}  // namespace nimbo
