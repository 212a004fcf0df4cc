// SPDX-License-Identifier: MIT
#include <string>

#include "fuzz/fuzz_input.h"
#include "usage/claude/reset_text_parser.h"

using namespace nimbo;

// The first byte chooses the moment: across some years, and the first and last that the clock has.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const UsageTime days = UsageTime(std::chrono::seconds(1795262400)) + std::chrono::hours(131) * data[0];
  constexpr std::chrono::days kLongAgo{181};
  const UsageTime now = data[0] == 0 ? UsageTime::min() : data[0] == 255 ? UsageTime::max() : days;
  const std::string line = "Resets " + std::string(textOf(data + 1, size - 1));
  for (const char* const zone : {"UTC", "Europe/Berlin", "America/St_Johns", "Mars/Base"}) {
    const auto reset = parseResetText(line, now, zone);
    require(!reset || now < UsageTime::min() + kLongAgo || *reset >= now - kLongAgo);
  }
  return 0;
}
