// SPDX-License-Identifier: MIT
#include "command/command_line.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>
#include <utility>

#include "base/text.h"
#include "command/time_words.h"

namespace nimbo {
namespace {

using Words = std::span<const std::string>;
using Parsed = Result<Command, std::string>;

constexpr std::array<std::string_view, 4> kPages{"usage", "resources", "awake", "settings"};
constexpr std::int32_t kMostProcesses = 1000;

tl::unexpected<std::string> wrong(std::string why) { return tl::unexpected(std::move(why)); }

tl::unexpected<std::string> unknown(const std::string& word) {
  return wrong(fmt::format("“{}” is not understood here. See nimbo --help.", printableLine(word)));
}

std::optional<std::int32_t> numberOf(std::string_view word) {
  std::int32_t value = 0;
  const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
  if (error != std::errc() || end != word.data() + word.size() || value <= 0) return std::nullopt;
  return value;
}

/// Takes the first word off `words`, absent where there is none.
std::optional<std::string> next(Words& words) {
  if (words.empty()) return std::nullopt;
  std::string word = words.front();
  words = words.subspan(1);
  return word;
}

/// The rest says how it is printed.
template <class Report>
Parsed report(Words words, Report wanted = {}) {
  while (const auto word = next(words)) {
    if (*word == "--json") {
      wanted.form.json = true;
    } else if (*word == "--short") {
      wanted.form.brief = true;
    } else if (*word == "--watch") {
      wanted.form.watch = true;
    } else {
      return unknown(*word);
    }
  }
  return wanted;
}

Parsed awakeOn(Words words, std::chrono::system_clock::time_point now) {
  AwakeOn on;
  while (const auto word = next(words)) {
    if (*word == "--display") {
      on.keepDisplayOn = true;
    } else if (*word == "--for" || *word == "--until") {
      if (on.until) return wrong("Say only once when it is to end.");
      const std::string value = next(words).value_or("");
      if (*word == "--for") {
        const auto length = durationOf(value);
        if (!length) return wrong("After --for comes a time such as 2h30m, of a year at most.");
        on.until = now + *length;
      } else {
        on.until = timeOfDay(value, now);
        if (!on.until) return wrong("After --until comes a time such as 18:30 or 2027-01-04T09:00.");
      }
    } else {
      return unknown(*word);
    }
  }
  return on;
}

Parsed awakeExtend(Words words) {
  const auto by = durationOf(next(words).value_or(""));
  if (!by) return wrong("After extend comes a time such as 30m, of a year at most.");
  if (!words.empty()) return unknown(words.front());
  return AwakeExtend{*by};
}

/// What follows is the command's own, also where it looks like an option.
Parsed awakeRun(Words words) {
  AwakeRun run;
  auto word = next(words);
  for (; word && word->starts_with("--"); word = next(words)) {
    if (*word == "--") {
      word = next(words);
      break;
    }
    if (*word != "--display") return unknown(*word);
    run.keepDisplayOn = true;
  }
  if (!word) return wrong("After run comes the command that is to be run.");
  run.command = {*word};
  run.command.insert(run.command.end(), words.begin(), words.end());
  return run;
}

Parsed awakeWhile(Words words) {
  AwakeWhile live;
  while (const auto word = next(words)) {
    if (*word == "--display") {
      live.keepDisplayOn = true;
    } else if (const auto process = numberOf(*word)) {
      live.processes.push_back(*process);
    } else {
      return wrong(fmt::format("“{}” is no process’s number.", printableLine(*word)));
    }
  }
  if (live.processes.empty()) return wrong("After while come the numbers of processes.");
  return live;
}

Parsed awake(Words words, std::chrono::system_clock::time_point now) {
  const std::string verb = next(words).value_or("");
  if (verb == "on") return awakeOn(words, now);
  if (verb == "extend") return awakeExtend(words);
  if (verb == "status") return report<AwakeReport>(words);
  if (verb == "run") return awakeRun(words);
  if (verb == "while") return awakeWhile(words);
  if (verb != "off") return wrong("After awake comes on, off, extend, status, run or while. See nimbo --help.");
  if (!words.empty()) return unknown(words.front());
  return AwakeOff{};
}

Parsed processes(Words words) {
  ProcessesReport wanted;
  if (!words.empty() && words.front() == "-n") {
    const auto count = words.size() > 1 ? numberOf(words[1]) : std::nullopt;
    if (!count || *count > kMostProcesses) return wrong("After -n comes a number from 1 to 1000.");
    wanted.count = static_cast<std::size_t>(*count);
    words = words.subspan(2);
  }
  return report(words, wanted);
}

Parsed open(Words words) {
  const std::string page = next(words).value_or("");
  if (!page.empty() && std::ranges::find(kPages, page) == kPages.end()) {
    return wrong("After open comes usage, resources, awake or settings.");
  }
  if (!words.empty()) return unknown(words.front());
  return OpenPage{page};
}

template <class Wanted>
Parsed alone(Words words) {
  if (!words.empty()) return unknown(words.front());
  return Wanted();
}

}  // namespace

bool isCommand(std::span<const std::string> arguments) {
  constexpr std::array<std::string_view, 8> kFirst{"awake", "usage", "memory", "processes",
                                                   "open",  "quit",  "--help", "--version"};
  return arguments.size() > 1 && std::ranges::find(kFirst, arguments[1]) != kFirst.end();
}

Result<Command, std::string> commandOf(std::span<const std::string> arguments,
                                       std::chrono::system_clock::time_point now) {
  const std::string& word = arguments[1];
  const Words rest = arguments.subspan(2);
  if (word == "awake") return awake(rest, now);
  if (word == "usage") return report<UsageReport>(rest);
  if (word == "memory") return report<MemoryReport>(rest);
  if (word == "processes") return processes(rest);
  if (word == "open") return open(rest);
  if (word == "quit") return alone<QuitProgram>(rest);
  if (word == "--version") return alone<ShowVersion>(rest);
  return ShowHelp();
}

const char* helpText() {
  return R"(nimbo                              runs in the panel, or shows its window
nimbo awake on [--for 2h30m | --until 18:30 | --until 2027-01-04T09:00] [--display]
nimbo awake off
nimbo awake extend 30m
nimbo awake status [FORM]
nimbo awake run [--display] [--] COMMAND [ARGUMENT…]
                                   keeps awake while the command runs, and returns its status
nimbo awake while [--display] PID…
                                   keeps awake until all these processes have ended
nimbo usage [FORM]                 what is left of AI allowances
nimbo memory [FORM]
nimbo processes [-n COUNT] [FORM]  the largest by memory
nimbo open [usage|resources|awake|settings]
nimbo quit
nimbo --diagnostics | --profile | --claude-desktop-check
nimbo --help | --version
A FORM is --json, --short for one line, --watch for that line again with each change, or two of them.
)";
}

}  // namespace nimbo
