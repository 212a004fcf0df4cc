// SPDX-License-Identifier: MIT
#include "fuzz/fuzz_input.h"
#include "usage/claude/usage_screen_parser.h"

using namespace nimbo;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const UsageTime now{std::chrono::seconds(1795262400)};
  const auto snapshot = parseUsageScreen(textOf(data, size), now, "Claude Code", "Europe/Berlin");
  if (!snapshot) return 0;
  require(!snapshot->windows.empty());
  for (const UsageWindow& window : snapshot->windows) require(window.usedPercent >= 0 && window.usedPercent <= 100);
  return 0;
}
