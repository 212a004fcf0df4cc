// SPDX-License-Identifier: MIT
#include <cstdio>
#include <iostream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <string>

#include "usage/claude/usage_screen_parser.h"
#include "usage/usage_json.h"

/// Reads a terminal's screen from the standard input and prints its limits as JSON.
int main() {
  const std::string screen{std::istreambuf_iterator<char>(std::cin), std::istreambuf_iterator<char>()};
  const auto snapshot = nimbo::parseUsageScreen(screen, std::chrono::system_clock::now(), "screen", "UTC");
  if (!snapshot) {
    std::fputs("no limits\n", stderr);
    return 1;
  }
  std::puts(nimbo::compactJsonText(nimbo::usageJson(*snapshot)).c_str());
  return 0;
}
