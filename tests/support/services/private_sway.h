// SPDX-License-Identifier: MIT
#pragma once

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <stdexcept>
#include <string>

#include "platform/posix/files/unique_fd.h"
#include "support/services/program_run.h"
#include "support/services/temporary_tree.h"

namespace nimbo {

/// The real sway, without any hardware, and somebody at its keyboard.
class PrivateSway {
 public:
  PrivateSway() {
    const std::string ready = (folder_.path() / "ready").string();
    folder_.write("config", "xwayland disable\nexec printenv WAYLAND_DISPLAY > " + ready + "\n");
    ::mkfifo(ready.c_str(), 0600);
    const UniqueFd answer(::open(ready.c_str(), O_RDWR | O_CLOEXEC));
    sway_ = fork();
    if (sway_ == 0) serve();
    pollfd poll{answer.get(), POLLIN, 0};
    std::array<char, 100> name{};
    if (::poll(&poll, 1, 20000) != 1 || ::read(answer.get(), name.data(), name.size() - 1) <= 0) {
      stop();
      throw std::runtime_error("sway did not start: " + log());
    }
    name_ = std::string(name.data()).substr(0, std::string(name.data()).find('\n'));
    turnedOnAtStart_ = turnedOn();
  }
  ~PrivateSway() { stop(); }
  PrivateSway(const PrivateSway&) = delete;
  PrivateSway& operator=(const PrivateSway&) = delete;

  [[nodiscard]] std::string socket() const { return (folder_.path() / name_).string(); }

  /// Presses a key and lets it go.
  void pressKey() const {
    const int status = runProgram({"/usr/bin/wtype", "-k", "Shift_L"},
                                  {"XDG_RUNTIME_DIR=" + folder_.path().string(), "WAYLAND_DISPLAY=" + name_});
    if (status != 0) throw std::runtime_error("no key");
  }

  /// How often it has turned its output off or on since. Read in its log: an output without hardware cannot go off, so
  /// that sway's own state of it stays as it was.
  [[nodiscard]] int turnedOff() const { return countInLog("Turning off output HEADLESS-1"); }
  [[nodiscard]] int turnedOn() const { return countInLog("Turning on output HEADLESS-1") - turnedOnAtStart_; }

 private:
  [[noreturn]] void serve() const {
    const std::string folder = folder_.path().string();
    const int log = open((folder + "/log").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    dup2(log, STDOUT_FILENO);
    dup2(log, STDERR_FILENO);
    const std::string runtime = "XDG_RUNTIME_DIR=" + folder;
    const std::string config = folder + "/config";
    // It refuses to be root.
    const char* const wrapper =
        ::geteuid() == 0 ? "exec unshare --user --map-user=1000 --map-group=1000 \"$@\"" : "exec \"$@\"";
    execlp("env", "env", "-u", "DISPLAY", "-u", "WAYLAND_DISPLAY", runtime.c_str(), "WLR_BACKENDS=headless",
           "WLR_LIBINPUT_NO_DEVICES=1", "WLR_RENDERER=pixman", "LIBSEAT_BACKEND=noop", "sh", "-c", wrapper, "sh",
           "sway", "--debug", "--config", config.c_str(), nullptr);
    _exit(127);
  }

  void stop() {
    if (sway_ <= 0) return;
    kill(sway_, SIGKILL);
    waitpid(sway_, nullptr, 0);
    sway_ = -1;
  }

  [[nodiscard]] std::string log() const { return folder_.read("log"); }
  [[nodiscard]] int countInLog(const std::string& words) const {
    const std::string text = log();
    int count = 0;
    for (auto at = text.find(words); at != std::string::npos; at = text.find(words, at + 1)) ++count;
    return count;
  }

  TemporaryTree folder_;
  std::string name_;
  int turnedOnAtStart_ = 0;
  pid_t sway_ = -1;
};

}  // namespace nimbo
