// SPDX-License-Identifier: MIT
#pragma once

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <stdexcept>
#include <string>

namespace nimbo {

/// An X server of the test's own, invisible and without a window manager; DISPLAY names it while
/// this object lives.
class PrivateDisplay {
 public:
  PrivateDisplay() {
    std::array<int, 2> pipe{};
    if (::pipe(pipe.data()) != 0) throw std::runtime_error("no pipe");
    server_ = fork();
    if (server_ == 0) serve(pipe);
    close(pipe[1]);
    const std::string number = readLine(pipe[0]);
    close(pipe[0]);
    if (number.empty()) throw std::runtime_error("Xvfb did not start");
    name_ = ":" + number;
    setenv("DISPLAY", name_.c_str(), 1);
  }
  ~PrivateDisplay() { stop(); }
  PrivateDisplay(const PrivateDisplay&) = delete;
  PrivateDisplay& operator=(const PrivateDisplay&) = delete;

  [[nodiscard]] const std::string& name() const { return name_; }

  void stop() {
    if (server_ <= 0) return;
    kill(server_, SIGKILL);
    waitpid(server_, nullptr, 0);
    server_ = -1;
    unsetenv("DISPLAY");
  }

 private:
  [[noreturn]] static void serve(const std::array<int, 2>& pipe) {
    const int null = open("/dev/null", O_WRONLY | O_CLOEXEC);
    dup2(null, STDERR_FILENO);
    close(pipe[0]);
    const std::string descriptor = std::to_string(pipe[1]);
    execlp("Xvfb", "Xvfb", "-displayfd", descriptor.c_str(), "-screen", "0", "1280x800x24", "-nolisten", "tcp",
           nullptr);
    _exit(127);
  }

  static std::string readLine(int descriptor) {
    std::string line;
    char character = 0;
    pollfd poll{descriptor, POLLIN, 0};
    while (::poll(&poll, 1, 20000) == 1 && read(descriptor, &character, 1) == 1 && character != '\n') {
      line += character;
    }
    return line;
  }

  pid_t server_ = -1;
  std::string name_;
};

}  // namespace nimbo
