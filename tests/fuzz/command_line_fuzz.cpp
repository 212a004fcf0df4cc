// SPDX-License-Identifier: MIT
// Arguments, one a line. The first is the program's own name, whose first byte chooses where and when it is.
#include "command/command_line.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <ctime>

#include "app/launch.h"
#include "base/text.h"
#include "command/time_words.h"
#include "fuzz/fuzz_input.h"

using namespace nimbo;

namespace {

using std::chrono::hours;
using std::chrono::seconds;
using std::chrono::system_clock;

constexpr hours kYear{366 * 24};

/// What is accepted is bounded, and is the same when it is said in other words.
void requireLength(const std::string& word) {
  const auto length = durationOf(word);
  if (!length) return;
  require(*length > seconds(0) && *length <= kYear);
  const auto count = length->count();
  require(durationOf(fmt::format("{}d{}h{}m{}s", count / 86400, count / 3600 % 24, count / 60 % 60, count % 60)) ==
          length);
}

void requireTime(std::string word, system_clock::time_point now) {
  const auto time = timeOfDay(word, now);
  if (!time) return;
  const bool dated = word.find('T') != std::string::npos;
  if (!dated) require(*time > now && *time <= now + hours(3 * 24));
  // What is printed says the same minute when it is given back: a clock that is turned back shows some twice.
  std::string printed = clockTime(*time, now);
  const bool withDate = printed.size() > 5;
  std::ranges::replace(printed, ' ', 'T');
  const auto again = timeOfDay(printed, now);
  require(again.has_value());
  if (withDate) require(clockTime(*again, now) == clockTime(*time, now));
  if (withDate) require(*again <= *time + hours(1) && *again >= *time - hours(1));
  require(*time > system_clock::time_point() && isoTime(*time).size() == std::size("2026-11-22T17:30:00Z") - 1);
}

struct Bounded {
  void operator()(const AwakeExtend& wanted) const { require(wanted.by > seconds(0) && wanted.by <= kYear); }
  void operator()(const AwakeRun& wanted) const { require(!wanted.command.empty()); }
  void operator()(const AwakeWhile& wanted) const {
    require(!wanted.processes.empty() &&
            std::ranges::all_of(wanted.processes, [](std::int32_t process) { return process > 0; }));
  }
  void operator()(const ProcessesReport& wanted) const { require(wanted.count >= 1 && wanted.count <= 1000); }
  template <class Other>
  void operator()(const Other& /*wanted*/) const {}
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::vector<std::string> words;
  for (std::string_view rest = textOf(data, size); !rest.empty();) words.emplace_back(takeUntil(rest, '\n'));
  const unsigned where = size == 0 ? 0 : data[0];
  // With and without a clock that is turned, one by half an hour, and one far from 1970's midnight.
  constexpr std::array kZones{"UTC", "Europe/Berlin", "Australia/Lord_Howe", "America/Anchorage"};
  ::setenv("TZ", kZones[where % kZones.size()], 1);
  ::tzset();
  const system_clock::time_point now{seconds(1795219200) + hours(30) * (where / kZones.size())};

  for (const std::string& word : words) {
    requireLength(word);
    requireTime(word, now);
  }
  const bool command = isCommand(words);
  const LaunchMode mode = launchMode(words);
  require(mode != (command ? LaunchMode::menuBar : LaunchMode::command));
  if (!command) return 0;
  if (const auto wanted = commandOf(words, now)) {
    std::visit(Bounded(), *wanted);
  } else {
    require(!wanted.error().empty() && isUtf8(wanted.error()) && printableLine(wanted.error()) == wanted.error());
  }
  return 0;
}
