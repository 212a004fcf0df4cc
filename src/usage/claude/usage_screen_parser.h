// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "usage/usage_model.h"

namespace nimbo {

/// What a program wrote to its terminal, as plain text: lossy UTF-8 without operating-system commands and
/// control sequences, each carriage return a line feed. A sequence that has not ended yet is text. Linear time.
[[nodiscard]] std::string plainTerminalText(std::string_view bytes);

/// Whether the tool's screen, as it was written to the terminal, shows the whole question whether a folder may
/// be trusted that goes by one of these names.
[[nodiscard]] bool asksForTrust(std::string_view screen, const std::vector<std::string>& folderNames);

/// Whether the tool's screen, as it was written to the terminal, is one that it shows instead of the limits until
/// the user has set it up or signed in, or until its service answers again, which takes it a good while.
[[nodiscard]] bool isDeadEnd(std::string_view screen);

/// Reads the limits off a usage screen, as it was written to a terminal or as a window shows it, line by line:
/// a title, then its figure and its reset, in any order and with anything in between. An error when it shows
/// none. `source` is the snapshot's, `localZone` as in `parseResetText`. Linear time; any thread.
[[nodiscard]] UsageOutcome parseUsageScreen(std::string_view screen, UsageTime now, std::string_view source,
                                            std::string_view localZone);

}  // namespace nimbo
