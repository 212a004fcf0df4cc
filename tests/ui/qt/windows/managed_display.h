// SPDX-License-Identifier: MIT
#pragma once

#include <csignal>

#include "support/services/private_display.h"
#include "x11_client.h"

namespace nimbo {

/// A display with a real window manager, xfwm4, on a session bus of its own for its settings.
class ManagedDisplay {
 public:
  ManagedDisplay() {
    manager_ = fork();
    if (manager_ == 0) manage();
  }
  ~ManagedDisplay() {
    kill(-manager_, SIGTERM);
    waitpid(manager_, nullptr, 0);
  }
  ManagedDisplay(const ManagedDisplay&) = delete;
  ManagedDisplay& operator=(const ManagedDisplay&) = delete;

 private:
  [[noreturn]] static void manage() {
    setpgid(0, 0);  // the bus and what it starts end with it
    const int null = open("/dev/null", O_WRONLY | O_CLOEXEC);
    dup2(null, STDERR_FILENO);
    dup2(null, STDOUT_FILENO);
    execlp("dbus-run-session", "dbus-run-session", "--", "xfwm4", "--compositor=off", nullptr);
    _exit(127);
  }

  PrivateDisplay display_;
  pid_t manager_ = -1;
};

}  // namespace nimbo
