// SPDX-License-Identifier: MIT
#include "platform/linux/loop/signal_termination.h"

#include "platform/contracts/termination_contract.h"

namespace nimbo {
namespace {

struct SignalHost final : TerminationHost {
  [[nodiscard]] MainLoop& loop() override { return events; }
  [[nodiscard]] Termination& termination() override { return signals; }

  SdEventMainLoop events;
  SignalTermination signals{events};
};

INSTANTIATE_TEST_SUITE_P(Linux, TerminationContract, everySignalTo(makeTerminationHost<SignalHost>));

}  // namespace
}  // namespace nimbo
