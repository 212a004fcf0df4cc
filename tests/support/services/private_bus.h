// SPDX-License-Identifier: MIT
#pragma once

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <system_error>

#include "support/services/temporary_tree.h"

namespace nimbo {

/// A message bus of its own for one test, with nobody on it and nothing to start.
class PrivateBus {
 public:
  PrivateBus() { start(); }
  ~PrivateBus() { stop(); }
  PrivateBus(const PrivateBus&) = delete;
  PrivateBus& operator=(const PrivateBus&) = delete;

  [[nodiscard]] const std::string& address() const { return address_; }

  /// Begins anew under the same address, with nobody on it.
  void start() {
    const std::string config = folder_.write("bus.conf", kConfig).string();
    // In a folder of our own, because the daemon leaves its socket behind.
    const std::filesystem::path socket = folder_.path() / "bus";
    std::filesystem::remove(socket);
    const std::string listen = "--address=unix:path=" + socket.string();
    std::array<int, 2> pipe{};
    if (::pipe(pipe.data()) != 0) throw std::system_error(errno, std::generic_category(), "pipe");
    pid_ = ::fork();
    if (pid_ == 0) {
      ::prctl(PR_SET_PDEATHSIG, SIGKILL);
      ::dup2(pipe[1], 3);
      // It complains of limits that a container does not let it raise.
      ::dup2(::open("/dev/null", O_WRONLY), STDERR_FILENO);
      ::execlp("dbus-daemon", "dbus-daemon", ("--config-file=" + config).c_str(), "--nofork", "--print-address=3",
               listen.c_str(), nullptr);
      ::_exit(127);
    }
    ::close(pipe[1]);
    readAddress(pipe[0]);
    ::close(pipe[0]);
  }
  /// Ends the bus; whoever is connected is cut off.
  void stop() {
    if (pid_ <= 0) return;
    ::kill(pid_, SIGKILL);
    ::waitpid(pid_, nullptr, 0);
    pid_ = 0;
  }

  /// The bus hangs without closing any connection, until `thaw` or the end.
  void freeze() const { ::kill(pid_, SIGSTOP); }
  void thaw() const { ::kill(pid_, SIGCONT); }

 private:
  static constexpr const char* kConfig =
      R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:tmpdir=/tmp</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
)";

  void readAddress(int descriptor) {
    address_.clear();
    char character = 0;
    while (::read(descriptor, &character, 1) == 1 && character != '\n') address_ += character;
    if (address_.empty()) throw std::runtime_error("dbus-daemon did not start");
    address_.resize(address_.find(','));  // without its number, which is another after a new start
  }

  TemporaryTree folder_;
  pid_t pid_ = 0;
  std::string address_;
};

}  // namespace nimbo
