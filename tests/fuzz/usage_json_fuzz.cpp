// SPDX-License-Identifier: MIT
#include <nlohmann/json.hpp>

#include "base/bounded_json.h"
#include "fuzz/fuzz_input.h"
#include "usage/usage_json.h"

using namespace nimbo;

// What could be read is written such that it reads the same.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto value = parseBoundedJson(textOf(data, size));
  if (!value) return 0;
  for (const DateCoding dates : {DateCoding::secondsSince2001, DateCoding::iso8601}) {
    const auto state = usageState(*value, dates);
    if (!state) continue;
    const auto again = parseBoundedJson(compactJsonText(usageJson(*state, dates)));
    require(again && usageState(*again, dates) == state);
  }
  return 0;
}
