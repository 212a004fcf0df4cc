// SPDX-License-Identifier: MIT
#include "platform/linux/machine/process_status.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "platform/linux/machine/proc_file.h"

namespace nimbo {
namespace {

// The file names all groups of a process ahead of its memory: up to 65,536 of ten digits.
constexpr std::size_t kLargestStatus = std::size_t{1} << 20;

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

}  // namespace

ProcessStatus parseProcessStatus(std::string_view text) {
  ProcessStatus status;
  std::string_view escapedName;
  std::optional<std::uint64_t> anonymous;
  std::uint64_t swapped = 0;
  while (auto line = takeLine(text)) {
    if (takePrefix(*line, "Name:\t")) {
      escapedName = *line;
    } else if (takePrefix(*line, "VmRSS:")) {
      status.resident = parseKilobytes(*line).value_or(0);
    } else if (takePrefix(*line, "RssAnon:")) {
      anonymous = parseKilobytes(*line);
    } else if (takePrefix(*line, "VmSwap:")) {
      swapped = parseKilobytes(*line).value_or(0);
      break;  // the last of those wanted
    }
  }
  status.footprint = anonymous.value_or(status.resident) + swapped;
  if (status.footprint > 0) status.name = unescaped(escapedName);
  return status;
}

std::optional<ProcessStatus> readProcessStatus(
    const std::function<std::optional<std::string_view>(std::span<char>)>& read) {
  std::array<char, 8192> usual;
  std::string large;
  auto text = read(usual);
  if (text && text->size() == usual.size()) {
    large.resize(kLargestStatus);
    text = read(large);
  }
  return text ? std::optional(parseProcessStatus(*text)) : std::nullopt;
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
