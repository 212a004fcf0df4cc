// SPDX-License-Identifier: MIT
// On a Mac, without fakes: the contracts that a machine keeps as it is, and that the others' calls are answered.
#include <unistd.h>

#include <algorithm>

#include "platform/contracts/foreground_programs_contract.h"
#include "platform/contracts/main_loop_contract.h"
#include "platform/contracts/pseudo_terminal_contract.h"
#include "platform/contracts/user_defaults_contract.h"
#include "platform/darwin/loop/cf_main_loop.h"
#include "platform/darwin/machine/libproc_processes.h"
#include "platform/darwin/machine/mach_host_statistics.h"
#include "platform/darwin/power/iokit_assertion_client.h"
#include "platform/darwin/power/iokit_power_sources.h"
#include "platform/darwin/settings/cf_user_defaults.h"
#include "platform/darwin/terminal/kqueue_foreground_programs.h"
#include "platform/darwin/terminal/libproc_sessions.h"

extern char** environ;  // which the system's headers do not declare

namespace nimbo {
namespace {

struct CfHost final : MainLoopHost {
  [[nodiscard]] MainLoop& loop() override { return events; }

  CfMainLoop events;
};

const auto kHost = testing::Values(makeMainLoopHost<CfHost>);
INSTANTIATE_TEST_SUITE_P(Real, MainLoopContract, kHost);
INSTANTIATE_TEST_SUITE_P(Real, RealTimeMainLoopContract, kHost);

/// In the user's own preferences, of which nothing is left.
struct CfStore final : UserDefaultsHost {
  CfStore() { clear(); }
  ~CfStore() override { clear(); }
  CfStore(const CfStore&) = delete;
  CfStore& operator=(const CfStore&) = delete;

  [[nodiscard]] UserDefaultsDomains& domains() override { return all; }
  [[nodiscard]] std::unique_ptr<UserDefaults> open(const std::string& domain) override {
    return std::make_unique<CfUserDefaults>(domain, [](const auto& work) { work(); });
  }
  void clear() {
    for (const char* const domain : {"test.domain", "test.other"}) all.removePersistentDomain(domain);
  }

  CfUserDefaultsDomains all;
};
INSTANTIATE_TEST_SUITE_P(Real, UserDefaultsContract, testing::Values(makeUserDefaultsHost<CfStore>));

std::unique_ptr<ForegroundPrograms> darwinPrograms() { return std::make_unique<KqueueForegroundPrograms>(::environ); }
INSTANTIATE_TEST_SUITE_P(Real, ForegroundProgramsContract, testing::Values(darwinPrograms));

TEST(RealMachine, TellsItsMemoryAndItsLoad) {
  MachHostStatistics statistics;
  const auto all = statistics.physicalMemory();
  EXPECT_GE(all, std::uint64_t{1} << 30);
  const auto memory = statistics.memory();
  ASSERT_TRUE(memory);
  EXPECT_GT(memory->wired, 0U);
  EXPECT_LE(memory->wired + memory->compressor + memory->active + memory->inactive, all);
  EXPECT_TRUE(statistics.cpuTicks());
}

TEST(RealMachine, TellsOfThisProcess) {
  LibprocProcessTable processes;
  const auto pids = processes.list();
  EXPECT_NE(std::find(pids.begin(), pids.end(), ::getpid()), pids.end());
  EXPECT_TRUE(processes.read(::getpid()));
  EXPECT_GT(processes.footprint(::getpid()).value_or(0), 0U);
  EXPECT_EQ(processes.name(::getpid()), "darwin_real_test");
}

TEST(RealMachine, IsKeptAwake) {
  IokitAssertionClient client;
  const auto held = client.create(kPreventSystemSleep, "Nimbo's tests");
  ASSERT_TRUE(held);
  client.release(*held);
}

TEST(RealMachine, TellsItsPowerSourcesWhichMayBeNone) { EXPECT_TRUE(IokitPowerSources().list()); }

}  // namespace
}  // namespace nimbo

namespace nimbo::terminal_contract {
namespace {

std::unique_ptr<PseudoTerminals> darwinTerminals() { return std::make_unique<PtyTerminals>(libprocTerminalSystem()); }

std::unique_ptr<TerminalWorld> darwinWorld() { return std::make_unique<RealTerminals<darwinTerminals>>(); }

INSTANTIATE_TEST_SUITE_P(Real, PseudoTerminalContract, testing::Values(darwinTerminals));
INSTANTIATE_TEST_SUITE_P(Real, TerminalProgramContract, testing::Values(darwinWorld));

}  // namespace
}  // namespace nimbo::terminal_contract
