// SPDX-License-Identifier: MIT
#include "platform/linux/loop/sd_event_main_loop.h"

#include "platform/contracts/main_loop_contract.h"

namespace nimbo {
namespace {

struct SdEventHost final : MainLoopHost {
  [[nodiscard]] MainLoop& loop() override { return events; }

  SdEventMainLoop events;
};

const auto kHost = testing::Values(makeMainLoopHost<SdEventHost>);
INSTANTIATE_TEST_SUITE_P(SdEvent, MainLoopContract, kHost);
INSTANTIATE_TEST_SUITE_P(SdEvent, RealTimeMainLoopContract, kHost);

}  // namespace
}  // namespace nimbo
