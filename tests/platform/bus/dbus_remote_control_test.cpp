// SPDX-License-Identifier: MIT
#include "platform/linux/bus/dbus_remote_control.h"

#include <gtest/gtest.h>

#include <atomic>
#include <optional>
#include <thread>

#include "platform/linux/bus/dbus_running_program.h"
#include "platform/linux/bus/program_address.h"
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
         .letGo = [this](std::uint32_t holder) { log_.push_back("let go " + std::to_string(holder)); }});
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

  PrivateBus bus_;
  BusLoop loop_;
  std::optional<BusPeer> running_;
  std::optional<DbusRemoteControl> control_;
  AwakeStatus status_;
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
  const BusSlot match =
      addMatch(listener.bus(), "type='signal',member='PropertiesChanged'", [&](sd_bus_message* signal) {
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
  control_->awakeChanged();
  status_ = {.active = true, .holders = {"make"}};
  control_->awakeChanged();
  EXPECT_TRUE(loop_.runUntil([&] { return told.size() >= 2; }));
  EXPECT_EQ(told, (Log{"Active", "Holders"}));
}

TEST_F(DbusRemoteControlTest, ValuesOutOfRangeAreRefused) {
  run();
  const BusPeer peer(loop_, bus_.address());
  for (const std::int64_t time : {std::int64_t{-1}, INT64_MAX}) {
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
