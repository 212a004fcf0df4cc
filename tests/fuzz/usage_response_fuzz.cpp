// SPDX-License-Identifier: MIT
#include "fuzz/fuzz_input.h"
#include "usage/codex/usage_response_parser.h"

using namespace nimbo;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const UsageTime now{std::chrono::seconds(1795262400)};
  for (const UsageProvider provider : kAllUsageProviders) {
    const auto snapshot = parseUsageResponse(textOf(data, size), provider, now);
    if (!snapshot) continue;
    require(!snapshot->windows.empty() && snapshot->windows.size() <= 4);
    for (const UsageWindow& window : snapshot->windows) require(window.usedPercent >= 0 && window.usedPercent <= 100);
  }
  return 0;
}
