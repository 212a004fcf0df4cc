// SPDX-License-Identifier: MIT
#include "darwin/fakes/fake_processes.h"
#include "darwin/fakes/fake_threads.h"
#include "platform/contracts/foreground_programs_contract.h"
#include "platform/contracts/pseudo_terminal_contract.h"
#include "platform/darwin/loop/utility_thread.h"
#include "platform/darwin/terminal/kqueue_foreground_programs.h"
#include "platform/darwin/terminal/libproc_sessions.h"
#include "platform/posix/loop/background_threads.h"

namespace nimbo::terminal_contract {
namespace {

/// With lists of the processes that really run.
class DarwinTerminals final : public PseudoTerminals {
 public:
  DarwinTerminals() { processes_.isThisMachine = true; }
  [[nodiscard]] Result<std::unique_ptr<PseudoTerminal>, std::error_code> open(TerminalSize size) override {
    return terminals_.open(size);
  }

 private:
  FakeProcesses processes_;
  PtyTerminals terminals_{libprocTerminalSystem()};
};

std::unique_ptr<PseudoTerminals> darwinTerminals() { return std::make_unique<DarwinTerminals>(); }

std::unique_ptr<TerminalWorld> darwinWorld() { return std::make_unique<RealTerminals<darwinTerminals>>(); }

INSTANTIATE_TEST_SUITE_P(Darwin, PseudoTerminalContract, testing::Values(darwinTerminals));
INSTANTIATE_TEST_SUITE_P(Darwin, TerminalProgramContract, testing::Values(darwinWorld));

TEST(DarwinThreads, WorkInTheBackgroundIsOfTheUtilityClassAndHasAName) {
  std::promise<std::pair<qos_class_t, std::string>> told;
  {
    BackgroundThreads threads([](const std::string&) { makeUtilityThread("Nimbo.test"); });
    threads.run([&told] {
      char name[16] = {};
      ::pthread_getname_np(::pthread_self(), name, sizeof(name));
      told.set_value({classOfThisThread(), name});
    });
  }
  EXPECT_EQ(told.get_future().get(), (std::pair<qos_class_t, std::string>(QOS_CLASS_UTILITY, "Nimbo.test")));
  EXPECT_NE(classOfThisThread(), QOS_CLASS_UTILITY);
}

}  // namespace
}  // namespace nimbo::terminal_contract

namespace nimbo {
namespace {

std::unique_ptr<ForegroundPrograms> darwinPrograms() { return std::make_unique<KqueueForegroundPrograms>(::environ); }

INSTANTIATE_TEST_SUITE_P(Darwin, ForegroundProgramsContract, testing::Values(darwinPrograms));

TEST(KqueueForegroundPrograms, ProcessHasThePrintableNameThatTheKernelKeeps) {
  FakeProcesses kernel;
  kernel.running[7] = {.name = "a\nb"};
  EXPECT_EQ(darwinPrograms()->nameOf(7),
            "a\xEF\xBF\xBD"
            "b");
  EXPECT_EQ(darwinPrograms()->nameOf(8), "");
}

}  // namespace
}  // namespace nimbo
