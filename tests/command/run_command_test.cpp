// SPDX-License-Identifier: MIT
#include "command/run_command.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <map>

#include "support/fake_clock.h"
#include "support/fake_host_statistics.h"
#include "support/fake_process_table.h"
#include "support/fake_temperature_sensor.h"

namespace nimbo {
namespace {

using Log = std::vector<std::string>;

/// The running program in memory; every call is written down, and answered with `error` where there is one.
class FakeRunningProgram final : public RunningProgram {
 public:
  Result<AwakeStatus, RemoteError> awake() override {
    if (error) return tl::unexpected(*error);
    return status;
  }
  Result<UsageStates, RemoteError> usage() override {
    if (error) return tl::unexpected(*error);
    return states;
  }
  Result<SystemReadings, RemoteError> readings() override {
    if (error) return tl::unexpected(*error);
    return latest;
  }
  /// One look for each of `news`, which happens before it.
  Result<void, RemoteError> watch(RemotePart part, const std::function<void()>& look) override {
    watched = part;
    for (const auto& happens : news) {
      happens();
      look();
    }
    return {};
  }
  Result<void, RemoteError> start(std::optional<Time> until, bool keepDisplayOn) override {
    return did(std::string(until ? "start until then" : "start") + (keepDisplayOn ? " with display" : ""));
  }
  Result<void, RemoteError> stop() override { return did("stop"); }
  Result<void, RemoteError> extend(std::chrono::seconds by) override {
    return did("extend " + std::to_string(by.count()));
  }
  Result<void, RemoteError> hold(const std::string& name, bool keepDisplayOn) override {
    return did("hold for " + name + (keepDisplayOn ? " with display" : ""));
  }
  Result<void, RemoteError> open(const std::vector<std::string>& links) override {
    return did("open " + (links.empty() ? "" : links[0]));
  }
  Result<void, RemoteError> act(const std::string& action) override { return did(action); }

  AwakeStatus status;
  UsageStates states;
  SystemReadings latest;
  std::vector<std::function<void()>> news;
  std::optional<RemotePart> watched;
  std::optional<RemoteError> error;
  Log calls;

 private:
  Result<void, RemoteError> did(std::string what) {
    calls.push_back(std::move(what));
    if (error) return tl::unexpected(*error);
    return {};
  }
};

class FakeForegroundPrograms final : public ForegroundPrograms {
 public:
  Result<int, std::string> run(const std::vector<std::string>& command) override {
    ran = command;
    return status;
  }
  Result<void, std::string> waitFor(const std::vector<std::int32_t>& processes) override {
    waited = processes;
    return {};
  }
  bool isReadFor(std::chrono::seconds /*time*/) override { return looks-- > 0; }
  bool showsColours() override { return coloured; }
  void terminate() override { ++terminations; }
  std::string nameOf(std::int32_t process) override { return names[process]; }

  Result<int, std::string> status = 0;
  int terminations = 0;
  int looks = 0;  ///< until nobody reads any more
  bool coloured = false;
  std::vector<std::string> ran;
  std::vector<std::int32_t> waited;
  std::map<std::int32_t, std::string> names;
};

class RunCommand : public testing::Test {
 protected:
  int run(const Command& command) {
    return runCommand(command, {.program = [this]() -> RunningProgram& { return program_; },
                                .programs = programs_,
                                .clock = clock_,
                                .host = [this]() -> HostStatistics& { return host_; },
                                .processes = [this]() -> ProcessTable& { return processes_; },
                                .temperature = [this]() -> TemperatureSensor& { return sensor_; },
                                .holdHere = [this](const ForegroundHold& hold) -> Result<int, std::string> {
                                  heldHere_.push_back(hold.name);
                                  hold.terminated();
                                  return hold.work();
                                },
                                .readUsageHere = [this]() -> Result<UsageStates, RemoteError> { return usageHere_; },
                                .version = "1.2",
                                .print = [this](const std::string& text) { printed_ += text; },
                                .complain = [this](const std::string& line) { complaints_.push_back(line); }});
  }

  FakeRunningProgram program_;
  FakeForegroundPrograms programs_;
  FakeClock clock_;
  FakeHostStatistics host_;
  FakeProcessTable processes_;
  FakeTemperatureSensor sensor_;
  Log heldHere_;
  UsageStates usageHere_;
  std::string printed_;
  Log complaints_;
};

TEST_F(RunCommand, AsksTheRunningProgram) {
  EXPECT_EQ(run(AwakeOn{clock_.now(), true}), 0);
  EXPECT_EQ(run(AwakeOff{}), 0);
  EXPECT_EQ(run(AwakeExtend{std::chrono::minutes(1)}), 0);
  EXPECT_EQ(run(OpenPage{""}), 0);
  EXPECT_EQ(run(OpenPage{"usage"}), 0);
  EXPECT_EQ(run(OpenPage{"settings"}), 0);
  EXPECT_EQ(run(QuitProgram{}), 0);
  EXPECT_EQ(program_.calls, (Log{"start until then with display", "stop", "extend 60", "open ", "open nimbo://usage",
                                 "settings", "quit"}));
  EXPECT_EQ(printed_, "");
}

TEST_F(RunCommand, TellsWhatIsRefusedAndThatNobodyRuns) {
  program_.error = RemoteError{RemoteError::Kind::refused, "No battery is left."};
  EXPECT_EQ(run(AwakeOn{}), 1);
  program_.error = RemoteError{RemoteError::Kind::notRunning, "Nimbo is not running."};
  EXPECT_EQ(run(AwakeOff{}), 3);
  EXPECT_EQ(run(AwakeReport{}), 3);
  EXPECT_EQ(complaints_, (Log{"No battery is left.", "Nimbo is not running.", "Nimbo is not running."}));
}

TEST_F(RunCommand, StatusIsALineForEyes) {
  program_.status = {.message = "Session ended. Normal sleep is allowed."};
  run(AwakeReport{});
  program_.status = {.active = true, .own = true, .keepsDisplayOn = true};
  run(AwakeReport{});
  program_.status = {.active = true, .holders = {"claude", "make"}};
  run(AwakeReport{});
  EXPECT_EQ(printed_,
            "Off. Session ended. Normal sleep is allowed.\n"
            "On until stopped. Display stays on.\n"
            "On for claude, make. Display may sleep.\n");
}

TEST_F(RunCommand, StatusForProgramsSaysWhatIsAbsent) {
  program_.status = {.active = true, .own = true, .message = "\"\xff", .holders = {"make"}};
  run(AwakeReport{{.json = true}});
  EXPECT_EQ(
      printed_,
      R"({"version":1,"text":"Awake for make","tooltip":"On until stopped for make. Display may sleep. \"�","class":"on",)"
      R"("percentage":0,"error":null,"awake":{"active":true,"own":true,"endsAt":null,"keepsDisplayOn":false,)"
      R"("message":"\"�","holders":["make"]}})"
      "\n");
}

TEST_F(RunCommand, CommandIsHeldForAndItsStatusReturned) {
  programs_.status = 7;
  EXPECT_EQ(run(AwakeRun{{"/usr/bin/make", "all"}, true}), 7);
  EXPECT_EQ(program_.calls, Log{"hold for make with display"});
  EXPECT_EQ(programs_.ran, (Log{"/usr/bin/make", "all"}));
  programs_.status = tl::unexpected(std::string("make cannot be started."));
  EXPECT_EQ(run(AwakeRun{{"make"}, false}), 1);
  EXPECT_EQ(complaints_, Log{"make cannot be started."});
}

TEST_F(RunCommand, WithoutARunningProgramItIsHeldHere) {
  for (const auto kind : {RemoteError::Kind::notRunning, RemoteError::Kind::unreachable}) {
    program_.error = RemoteError{kind, "Nobody."};
    programs_.status = 5;
    EXPECT_EQ(run(AwakeRun{{"make"}, false}), 5);
  }
  EXPECT_EQ(heldHere_, (Log{"make", "make"}));
  EXPECT_EQ(programs_.terminations, 2) << "a termination is the command's";
  EXPECT_EQ(complaints_, Log{});
}

TEST_F(RunCommand, RefusedHoldRunsNothing) {
  program_.error = RemoteError{RemoteError::Kind::refused, "Not on battery."};
  EXPECT_EQ(run(AwakeRun{{"make"}, false}), 1);
  EXPECT_EQ(programs_.ran, Log{});
  EXPECT_EQ(heldHere_, Log{});
}

TEST_F(RunCommand, ProcessesAreNamedAndWaitedFor) {
  programs_.names = {{4, "cargo"}, {9, "make"}};
  EXPECT_EQ(run(AwakeWhile{{9, 4}, false}), 0);
  EXPECT_EQ(program_.calls, Log{"hold for make, cargo"});
  EXPECT_EQ(programs_.waited, (std::vector<std::int32_t>{9, 4}));
}

TEST_F(RunCommand, WatchedLineIsPrintedWhenItIsAnother) {
  program_.news = {[] {}, [] {}, [this] { program_.status = {.active = true, .own = true}; },
                   [this] { program_.status.message = "On battery."; },
                   [this] {
                     program_.error = RemoteError{RemoteError::Kind::notRunning, "Nimbo is not running."};
                   }};
  EXPECT_EQ(run(AwakeReport{{.watch = true}}), 0);
  EXPECT_EQ(program_.watched, RemotePart::awake);
  EXPECT_EQ(printed_, "\nAwake\n\n");
  EXPECT_EQ(complaints_, Log{});
}

TEST_F(RunCommand, WatchedObjectTellsAbsentFromFailedAndOff) {
  program_.news = {[this] { program_.latest.memoryFailed = true; }, [this] { program_.latest.memoryFailed = false; },
                   [this] {
                     program_.error = RemoteError{RemoteError::Kind::notRunning, "Nimbo is not running."};
                   }};
  run(MemoryReport{{.json = true, .watch = true}});
  EXPECT_EQ(program_.watched, RemotePart::readings);
  const auto object = [](const char* tooltip, const char* level, const char* error) {
    return fmt::format(
        R"({{"version":1,"text":"","tooltip":"{}","class":"{}","percentage":0,"error":{},"memory":null}})"
        "\n",
        tooltip, level, error);
  };
  const char* const failed = "The system’s memory cannot be read.";
  EXPECT_EQ(printed_, object(failed, "failed", "\"The system’s memory cannot be read.\"") + object("", "off", "null") +
                          object("Nimbo is not running.", "absent", "\"Nimbo is not running.\""));
}

TEST_F(RunCommand, ProcessesAreWatchedWithoutARunningProgram) {
  program_.error = RemoteError{RemoteError::Kind::notRunning, "Nimbo is not running."};
  programs_.looks = 2;
  processes_.add(7, std::uint64_t{3} << 30U, "java");
  EXPECT_EQ(run(ProcessesReport{{.watch = true}}), 0);
  EXPECT_EQ(printed_, "java 3.0 GB\n");
}

TEST_F(RunCommand, UsageIsReadHereWithoutARunningProgram) {
  usageHere_[UsageProvider::codex] = {.enabled = true, .message = "Sign in again."};
  program_.error = RemoteError{RemoteError::Kind::unreachable, "It does not answer."};
  EXPECT_EQ(run(UsageReport{}), 1);
  program_.error = RemoteError{RemoteError::Kind::notRunning, "Nimbo is not running."};
  EXPECT_EQ(run(UsageReport{}), 0);
  EXPECT_EQ(printed_, "Codex  Sign in again.\n");
  EXPECT_EQ(complaints_, Log{"It does not answer."});
}

TEST_F(RunCommand, LoadComesFromTheRunningProgram) {
  program_.latest.cpu = 0.25;
  EXPECT_EQ(run(MemoryReport{{.brief = true}}), 0);
  EXPECT_NE(printed_.find(" · CPU 25%"), std::string::npos) << printed_;
}

TEST_F(RunCommand, MemoryThatCannotBeReadIsAFailure) {
  host_.counts.reset();
  EXPECT_EQ(run(MemoryReport{}), 1);
  EXPECT_EQ(printed_, "");
  EXPECT_EQ(complaints_, Log{"The system’s memory cannot be read."});
}

TEST_F(RunCommand, HelpAndVersion) {
  EXPECT_EQ(run(ShowVersion{}), 0);
  EXPECT_EQ(printed_, "nimbo 1.2\n");
  EXPECT_EQ(run(ShowHelp{}), 0);
  EXPECT_NE(printed_.find("nimbo awake run"), std::string::npos);
}

}  // namespace
}  // namespace nimbo
