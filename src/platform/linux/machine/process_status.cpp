// SPDX-License-Identifier: MIT
#include "platform/linux/machine/process_status.h"

#include <algorithm>

#include "platform/linux/machine/proc_text.h"

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

struct StatusFields {
  std::string_view name;  // as escaped
  std::optional<std::uint64_t> anonymous;
  std::uint64_t resident = 0;
  std::uint64_t swapped = 0;

  [[nodiscard]] std::uint64_t footprint() const { return anonymous.value_or(resident) + swapped; }
};

StatusFields parseFields(std::string_view text) {
  StatusFields fields;
  while (auto line = takeLine(text)) {
    if (takePrefix(*line, "Name:\t")) {
      fields.name = *line;
    } else if (takePrefix(*line, "VmRSS:")) {
      fields.resident = parseKilobytes(*line).value_or(0);
    } else if (takePrefix(*line, "RssAnon:")) {
      fields.anonymous = parseKilobytes(*line);
    } else if (takePrefix(*line, "VmSwap:")) {
      fields.swapped = parseKilobytes(*line).value_or(0);
      break;  // the last of those wanted
    }
  }
  return fields;
}

}  // namespace

ProcessReading parseProcessStatus(std::string_view text) {
  const StatusFields fields = parseFields(text);
  const std::uint64_t footprint = fields.footprint();
  return {footprint, footprint > 0 ? unescaped(fields.name) : std::string()};
}

StatusMemory parseStatusMemory(std::string_view text) {
  const StatusFields fields = parseFields(text);
  return {fields.footprint(), fields.resident};
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
