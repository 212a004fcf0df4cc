// SPDX-License-Identifier: MIT
#include "platform/linux/process_status.h"

#include <algorithm>

#include "platform/linux/proc_text.h"

namespace nimbo {
namespace {

// The kernel writes a newline as \n and a backslash as \\.
std::string unescaped(std::string_view escaped) {
  std::string name;
  for (std::size_t index = 0; index < escaped.size(); ++index) {
    const bool pair = escaped[index] == '\\' && index + 1 < escaped.size();
    if (pair) ++index;
    name += pair && escaped[index] == 'n' ? '\n' : escaped[index];
  }
  return name;
}

bool takePrefix(std::string_view& line, std::string_view prefix) {
  if (!line.starts_with(prefix)) return false;
  line.remove_prefix(prefix.size());
  return true;
}

}  // namespace

ProcessReading parseProcessStatus(std::string_view text) {
  std::string_view name;
  std::optional<std::uint64_t> anonymous;
  std::uint64_t resident = 0;
  std::uint64_t swapped = 0;
  while (auto line = takeLine(text)) {
    if (takePrefix(*line, "Name:\t")) {
      name = *line;
    } else if (takePrefix(*line, "VmRSS:")) {
      resident = parseKilobytes(*line).value_or(0);
    } else if (takePrefix(*line, "RssAnon:")) {
      anonymous = parseKilobytes(*line);
    } else if (takePrefix(*line, "VmSwap:")) {
      swapped = parseKilobytes(*line).value_or(0);
      break;  // the last of those wanted
    }
  }
  const std::uint64_t footprint = anonymous.value_or(resident) + swapped;
  return {footprint, footprint > 0 ? unescaped(name) : std::string()};
}

std::optional<std::uint64_t> parseAnonymousPages(std::string_view text) {
  auto line = takeLine(text);
  if (!line) return std::nullopt;
  (void)takeWord(*line);  // the size of the address space
  const auto resident = parseNumber(takeWord(*line));
  const auto shared = parseNumber(takeWord(*line));
  if (!resident || !shared) return std::nullopt;
  return *resident - std::min(*resident, *shared);
}

}  // namespace nimbo
