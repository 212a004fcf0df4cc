// SPDX-License-Identifier: MIT
#include "platform/linux/remote/dbus_remote_control.h"

#include <gtest/gtest.h>

#include <atomic>
#include <optional>
#include <thread>

#include "platform/linux/bus/program_address.h"
#include "platform/linux/remote/dbus_running_program.h"
#include "support/services/bus_peer.h"
#include "support/services/private_bus.h"

namespace nimbo {
namespace {

using Log = std::vector<std::string>;
using Kind = RemoteError::Kind;
using std::chrono::milliseconds;

constexpr const char* kAwake = "com.quellwerk.Nimbo.Awake1";

/// A running program whose session is this test's, and another process that steers it.
class DbusRemoteControlTest : public testing::Test {
 protected:
  void run() {
    running_.emplace(loop_, bus_.address());
    control_.emplace(running_->bus());
    control_->offer(
        {.awake = [this] { return status_; },
         .start = [this](std::optional<RunningProgram::Time> until, bool display) -> Result<void, std::string> {
           status_ = {.active = true, .own = true, .endsAt = until, .keepsDisplayOn = display};
           return outcome();
         },
         .stop = [this] { log_.emplace_back("stop"); },
         .extend = [this](std::chrono::seconds by) -> Result<void, std::string> {
           log_.push_back("extend " + std::to_string(by.count()));
           return outcome();
         },
         .hold = [this](const std::string& name, bool display) -> Result<std::uint32_t, std::string> {
           log_.push_back("hold " + name + (display ? " with display" : ""));
           if (refusal_) return tl::unexpected(*refusal_);
           return ++holders_;
         },
         .letGo = [this](std::uint32_t holder) { log_.push_back("let go " + std::to_string(holder)); },
         .usage = [this]() -> const UsageStates& { return usage_; },
         .refreshUsage = [this] { log_.emplace_back("refresh"); },
         .readings = [this]() -> const SystemReadings& { return readings_; }});
    running_->own(kProgramName);
  }

  [[nodiscard]] Result<void, std::string> outcome() const {
    if (refusal_) return tl::unexpected(*refusal_);
    return {};
  }

  /// What `use` does in the other process, while this one turns.
  template <class Use>
  auto from(DbusRunningProgram& program, const Use& use) {
    std::optional<decltype(use(program))> answer;
    std::atomic<bool> done = false;
    std::thread other([&] {
      answer.emplace(use(program));
      done = true;
      loop_.main().post([] {});
    });
    EXPECT_TRUE(loop_.runUntil([&] { return done.load(); }));
    other.join();
    return *answer;
  }
  template <class Use>
  auto from(const Use& use) {
    DbusRunningProgram program(bus_.address());
    return from(program, use);
  }

  /// The names of the properties that are told as changed to `listener`, for as long as the slot lives.
  [[nodiscard]] BusSlot follow(const BusPeer& listener, Log& told) {
    BusSlot match =
        addMatch(listener.bus(), "type='signal',member='PropertiesChanged'", [&told](sd_bus_message* signal) {
          sd_bus_message_skip(signal, "s");
          sd_bus_message_enter_container(signal, 'a', "{sv}");
          while (sd_bus_message_enter_container(signal, 'e', "sv") > 0) {
            const char* name = nullptr;
            sd_bus_message_read(signal, "s", &name);
            told.emplace_back(name);
            sd_bus_message_skip(signal, "v");
            sd_bus_message_exit_container(signal);
          }
        });
    EXPECT_NE(listener.ownerOf(kProgramName), "");  // the match stands then
    return match;
  }

  PrivateBus bus_;
  BusLoop loop_;
  std::optional<BusPeer> running_;
  std::optional<DbusRemoteControl> control_;
  AwakeStatus status_;
  UsageStates usage_;
  SystemReadings readings_;
  std::optional<std::string> refusal_;
  std::uint32_t holders_ = 0;
  Log log_;
};

TEST_F(DbusRemoteControlTest, StatusComesAcrossWhole) {
  status_ = {.active = true,
             .own = true,
             .endsAt = RunningProgram::Time(std::chrono::seconds(1795219200)),
             .keepsDisplayOn = true,
             .message = "Grüße",
             .holders = {"make", "claude"}};
  run();
  EXPECT_EQ(from([](auto& program) { return program.awake(); }), status_);
}

TEST_F(DbusRemoteControlTest, RequestsComeAcross) {
  run();
  const RunningProgram::Time end(std::chrono::seconds(1795219200));
  EXPECT_TRUE(from([&](auto& program) { return program.start(end, true); }));
  EXPECT_EQ(status_.endsAt, end);
  EXPECT_TRUE(status_.keepsDisplayOn);
  EXPECT_TRUE(from([&](auto& program) { return program.start(std::nullopt, false); }));
  EXPECT_EQ(status_.endsAt, std::nullopt);
  EXPECT_TRUE(from([](auto& program) { return program.stop(); }));
  EXPECT_TRUE(from([](auto& program) { return program.extend(std::chrono::minutes(30)); }));
  EXPECT_EQ(log_, (Log{"stop", "extend 1800"}));
}

TEST_F(DbusRemoteControlTest, RefusalComesAcross) {
  refusal_ = "Choose an end time in the future.";
  run();
  for (const auto& answer : {from([](auto& program) { return program.start(std::nullopt, false); }),
                             from([](auto& program) { return program.extend(std::chrono::minutes(30)); }),
                             from([](auto& program) { return program.hold("make", false); })}) {
    ASSERT_FALSE(answer);
    EXPECT_EQ(answer.error().kind, Kind::refused);
    EXPECT_EQ(answer.error().message, *refusal_);
  }
}

TEST_F(DbusRemoteControlTest, WhoDisappearsLetsGo) {
  run();
  auto program = std::make_unique<DbusRunningProgram>(bus_.address());
  EXPECT_TRUE(from(*program, [](auto& other) { return other.hold("make\n\x1b[1m" + std::string(200, 'x'), true); }));
  ASSERT_EQ(log_.size(), 1U);
  EXPECT_EQ(log_[0].find_first_of("\n\x1b"), std::string::npos);
  EXPECT_LT(log_[0].size(), 100U);
  log_.clear();
  program.reset();
  EXPECT_TRUE(loop_.runUntil([&] { return log_ == Log{"let go 1"}; }));
}

TEST_F(DbusRemoteControlTest, NobodyLetsGoWhatAnotherHolds) {
  run();
  const BusPeer holder(loop_, bus_.address());
  const BusPeer stranger(loop_, bus_.address());
  const auto release = [](sd_bus_message* call) { sd_bus_message_append(call, "u", 1U); };
  holder.call(kProgramName, kProgramPath, kAwake, "Hold",
              [](sd_bus_message* call) { sd_bus_message_append(call, "sb", "make", 0); });
  log_.clear();
  EXPECT_TRUE(isError(stranger.call(kProgramName, kProgramPath, kAwake, "Release", release).get()));
  EXPECT_EQ(log_, Log{});
  EXPECT_FALSE(isError(holder.call(kProgramName, kProgramPath, kAwake, "Release", release).get()));
  EXPECT_EQ(log_, Log{"let go 1"});
}

TEST_F(DbusRemoteControlTest, OnlyWhatIsAnotherIsTold) {
  run();
  const BusPeer listener(loop_, bus_.address());
  Log told;
  const BusSlot match = follow(listener, told);
  control_->awakeChanged();
  status_ = {.active = true, .holders = {"make"}};
  control_->awakeChanged();
  EXPECT_TRUE(loop_.runUntil([&] { return told.size() >= 2; }));
  EXPECT_EQ(told, (Log{"Active", "Holders"}));
}

TEST_F(DbusRemoteControlTest, FiguresComeAcross) {
  const RunningProgram::Time now(std::chrono::seconds(1795219200));
  usage_[UsageProvider::codex] = {.enabled = true,
                                  .snapshot = UsageSnapshot{{{"5-hour", 61.5, now}, {"Weekly", 0}}, now, "Grüße"},
                                  .message = "Sign in again."};
  usage_[UsageProvider::claude] = {};
  readings_.memory = MemorySnapshot();
  readings_.memory->total = std::uint64_t{16} << 30U;
  readings_.memory->app = 5;
  readings_.memory->pressure = MemoryPressure::warning;
  readings_.temperature = 54.5;
  run();
  EXPECT_EQ(from([](auto& program) { return program.usage(); }), usage_);
  auto readings = from([](auto& program) { return program.readings(); });
  ASSERT_TRUE(readings);
  EXPECT_EQ(readings->memory, readings_.memory);
  EXPECT_EQ(readings->temperature, 54.5);
  EXPECT_EQ(readings->cpu, std::nullopt);
  readings_.memory.reset();
  readings_.memoryFailed = true;
  readings_.cpu = 0.25;
  readings = from([](auto& program) { return program.readings(); });
  ASSERT_TRUE(readings);
  EXPECT_EQ(readings->memory, std::nullopt);
  EXPECT_TRUE(readings->memoryFailed);
  EXPECT_EQ(readings->cpu, 0.25);
}

TEST_F(DbusRemoteControlTest, UsageIsToldWhenItIsAnother) {
  run();
  const BusPeer listener(loop_, bus_.address());
  Log told;
  const BusSlot match = follow(listener, told);
  usage_[UsageProvider::codex].isRefreshing = true;
  control_->usageChanged();
  usage_[UsageProvider::claude].enabled = true;
  control_->usageChanged();
  EXPECT_TRUE(loop_.runUntil([&] { return !told.empty(); }));
  EXPECT_EQ(told, Log{"Claude"});
  EXPECT_FALSE(isError(listener.call(kProgramName, kProgramPath, "com.quellwerk.Nimbo.Usage1", "Refresh").get()));
  EXPECT_EQ(log_, Log{"refresh"});
}

TEST_F(DbusRemoteControlTest, ReadingsAreToldWhileSomebodyWantsThem) {
  run();
  const auto change = [this](double value) {
    readings_.cpu = readings_.temperature = value;
    control_->readingsChanged();
  };
  const BusPeer listener(loop_, bus_.address());
  Log told;
  const BusSlot match = follow(listener, told);
  change(0.25);
  const auto watch = [](const BusPeer& peer, const std::vector<const char*>& names) {
    return peer.call(kProgramName, kProgramPath, "com.quellwerk.Nimbo.Resources1", "Watch", [&](sd_bus_message* call) {
      sd_bus_message_open_container(call, 'a', "s");
      for (const char* const name : names) sd_bus_message_append(call, "s", name);
      sd_bus_message_close_container(call);
    });
  };
  EXPECT_TRUE(isError(watch(listener, {"Cpu", "Disk"}).get()));
  std::optional<BusPeer> other(std::in_place, loop_, bus_.address());
  watch(*other, {"Cpu"});
  watch(listener, {"Temperature"});
  EXPECT_EQ(told, Log{}) << "nobody wanted it then";
  change(0.5);
  change(0.5);
  EXPECT_TRUE(loop_.runUntil([&] { return told.size() == 2; }));
  EXPECT_EQ(told, (Log{"Cpu", "Temperature"}));
  watch(listener, {});
  const char* gone = nullptr;
  sd_bus_get_unique_name(other->bus(), &gone);
  const std::string name = gone;
  other.reset();
  EXPECT_TRUE(listener.waitForName(name, false));
  listener.settle(kProgramName);
  told.clear();
  change(0.75);
  listener.settle(kProgramName);
  EXPECT_EQ(told, Log{}) << "who has gone wants nothing";
}

TEST_F(DbusRemoteControlTest, WatchedPartIsLookedAtWhenItChangesAndWhenTheProgramComesOrGoes) {
  Log seen;
  std::atomic<int> looks = 0;
  std::thread other([&] {
    DbusRunningProgram program(bus_.address());
    const auto end = program.watch(RemotePart::readings, [&] {
      const auto readings = program.readings();
      seen.push_back(readings ? std::to_string(readings->cpu.value_or(-1)) : readings.error().message);
      ++looks;
      loop_.main().post([] {});
    });
    seen.push_back(end ? "nobody reads" : end.error().message);
  });
  const auto turnUntil = [&](int count) { EXPECT_TRUE(loop_.runUntil([&] { return looks >= count; })); };
  turnUntil(1);
  readings_.cpu = 0.25;
  run();
  turnUntil(2);
  readings_.cpu = 0.5;
  control_->readingsChanged();
  turnUntil(3);
  control_.reset();
  running_.reset();
  turnUntil(4);
  bus_.stop();
  other.join();
  EXPECT_EQ(seen, (Log{"Nimbo is not running.", "0.250000", "0.500000", "Nimbo is not running.",
                       "No session bus can be reached: it has ended."}));
}

TEST_F(DbusRemoteControlTest, ValuesOutOfRangeAreRefused) {
  run();
  const BusPeer peer(loop_, bus_.address());
  for (const std::int64_t time : {std::int64_t{-1}, std::int64_t{253402300799}, INT64_MAX}) {
    EXPECT_TRUE(isError(peer.call(kProgramName, kProgramPath, kAwake, "Start",
                                  [&](sd_bus_message* call) { sd_bus_message_append(call, "xb", time, 0); })
                            .get()));
    EXPECT_TRUE(isError(peer.call(kProgramName, kProgramPath, kAwake, "Extend",
                                  [&](sd_bus_message* call) { sd_bus_message_append(call, "x", time); })
                            .get()));
  }
  EXPECT_EQ(log_, Log{});
  EXPECT_FALSE(status_.active);
}

TEST_F(DbusRemoteControlTest, WithoutAProgramOrABusItIsSaid) {
  DbusRunningProgram nobody(bus_.address());
  const auto answer = nobody.awake();
  ASSERT_FALSE(answer);
  EXPECT_EQ(answer.error().kind, Kind::notRunning);
  EXPECT_EQ(nobody.act("quit").error().kind, Kind::notRunning);
  DbusRunningProgram alone("unix:path=/nonexistent/bus");
  EXPECT_EQ(alone.stop().error().kind, Kind::unreachable);
}

TEST_F(DbusRemoteControlTest, SilentProgramIsNotWaitedForForLong) {
  const BusPeer silent(loop_, bus_.address());
  silent.own(kProgramName);
  DbusRunningProgram program(bus_.address(), milliseconds(50));
  EXPECT_EQ(program.stop().error().kind, Kind::unreachable);
}

}  // namespace
}  // namespace nimbo
