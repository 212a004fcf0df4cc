// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <variant>
#include <vector>

#include "base/result.h"

namespace nimbo {

struct AwakeOn {
  std::optional<std::chrono::system_clock::time_point> until;  ///< absent until stopped
  bool keepDisplayOn = false;
};
struct AwakeOff {};
struct AwakeExtend {
  std::chrono::seconds by{0};
};
/// How a report is printed.
struct Form {
  bool json = false;
  bool brief = false;  ///< one line instead of a page
  bool watch = false;  ///< the line again with each change
  bool operator==(const Form&) const = default;
};
struct AwakeReport {
  Form form{};
};
struct AwakeRun {
  std::vector<std::string> command;  ///< never empty
  bool keepDisplayOn = false;
};
struct AwakeWhile {
  std::vector<std::int32_t> processes;  ///< never empty
  bool keepDisplayOn = false;
};
struct UsageReport {
  Form form{};
};
struct MemoryReport {
  Form form{};
};
struct ProcessesReport {
  Form form{};
  std::size_t count = 10;
};
struct OpenPage {
  std::string page;  ///< "usage", "resources", "awake", "settings", or empty for the one shown last
};
struct QuitProgram {};
struct ShowHelp {};
struct ShowVersion {};

/// What one start of the program asks for, besides the program itself.
using Command = std::variant<AwakeOn, AwakeOff, AwakeExtend, AwakeReport, AwakeRun, AwakeWhile, UsageReport,
                             MemoryReport, ProcessesReport, OpenPage, QuitProgram, ShowHelp, ShowVersion>;

/// Whether the first word after the program's own is one of a command.
[[nodiscard]] bool isCommand(std::span<const std::string> arguments);

/// `arguments` as `isCommand` takes them. The error is one sentence.
[[nodiscard]] Result<Command, std::string> commandOf(std::span<const std::string> arguments,
                                                     std::chrono::system_clock::time_point now);

/// All commands, a line each.
[[nodiscard]] const char* helpText();

}  // namespace nimbo
