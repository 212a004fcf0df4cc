// SPDX-License-Identifier: MIT
#include <string>

#include "fuzz/fuzz_input.h"
#include "usage/claude/usage_screen_parser.h"

using namespace nimbo;

// The first byte chooses where the rest is cut; the pieces must give what the whole gives.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const UsageTime now{std::chrono::seconds(1795262400)};
  const std::string_view screen = textOf(data + 1, size - 1);
  UsageScreenParser parser;
  for (std::size_t offset = 0; offset < screen.size(); offset += 1U + data[0]) {
    parser.append(screen.substr(offset, 1U + data[0]));
  }
  const auto snapshot = parser.snapshot(now, "Claude Code", "Europe/Berlin");
  require(snapshot == parseUsageScreen(screen, now, "Claude Code", "Europe/Berlin"));
  if (!snapshot) return 0;
  require(!snapshot->windows.empty());
  for (const UsageWindow& window : snapshot->windows) require(window.usedPercent >= 0 && window.usedPercent <= 100);
  return 0;
}
