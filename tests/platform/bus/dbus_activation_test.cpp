// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <string>

#include "platform/posix/files/unique_fd.h"
#include "support/services/program_run.h"
#include "support/services/temporary_tree.h"

namespace nimbo {
namespace {

/// A bus that starts the program by its service file, as desktops do with DBusActivatable entries.
class DbusActivation : public ::testing::Test {
 protected:
  DbusActivation() {
    tree.write("services/com.quellwerk.Nimbo.service",
               "[D-BUS Service]\nName=com.quellwerk.Nimbo\nExec=" NIMBO_ACTIVATED_PROGRAM "\n");
    tree.write("bus.conf", R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:dir=)" + tree.path().string() +
                               R"(</listen>
  <servicedir>)" + tree.path().string() +
                               R"(/services</servicedir>
  <policy context="default"><allow send_destination="*"/><allow eavesdrop="true"/><allow own="*"/></policy>
</busconfig>
)");
    ::mkfifo(log.c_str(), 0600);
    received.reset(::open(log.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC));
  }

  /// Runs a shell's line on the bus; false when it failed.
  [[nodiscard]] bool run(const std::string& line) const {
    return runProgram({"/usr/bin/dbus-run-session", "--config-file=" + (tree.path() / "bus.conf").string(), "--",
                       "/bin/sh", "-c", line},
                      {"PATH=/usr/bin:/bin", "NIMBO_TEST_LOG=" + log}) == 0;
  }

  /// All that the program has written up to its last link.
  [[nodiscard]] std::string heard() const {
    std::string text;
    pollfd more{received.get(), POLLIN, 0};
    while (!text.ends_with("nimbo://end\n") && ::poll(&more, 1, 10'000) == 1) {
      std::array<char, 256> buffer{};
      const ssize_t count = ::read(received.get(), buffer.data(), buffer.size());
      if (count > 0) text.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return text;
  }

  static std::string call(const std::string& method, const std::string& arguments) {
    return "gdbus call --timeout 10 --session --dest com.quellwerk.Nimbo --object-path /com/quellwerk/Nimbo"
           " --method org.freedesktop.Application." +
           method + ' ' + arguments;
  }

  TemporaryTree tree;
  const std::string log = (tree.path() / "log").string();
  UniqueFd received;
};

TEST_F(DbusActivation, ProgramStartedByACallGetsThatCall) {
  EXPECT_TRUE(run(call("Open", "\"['nimbo://awake', 'nimbo://end']\" '{}'")));
  EXPECT_EQ(heard(), "open nimbo://awake\nopen nimbo://end\n");
}

TEST_F(DbusActivation, ProgramStartedByActivationIsTheOneThatLaterStartsReach) {
  EXPECT_TRUE(run(call("Activate", "'{}'") + " && " NIMBO_ACTIVATED_PROGRAM " nimbo://awake && " +
                  call("Activate", "'{}'") + " && " NIMBO_ACTIVATED_PROGRAM " nimbo://end"));
  EXPECT_EQ(heard(), "activate\nopen nimbo://awake\nactivate\nopen nimbo://end\n");
}

}  // namespace
}  // namespace nimbo
