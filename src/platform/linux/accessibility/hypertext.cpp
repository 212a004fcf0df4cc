// SPDX-License-Identifier: MIT
#include "platform/linux/accessibility/hypertext.h"

#include <algorithm>
#include <utility>

namespace nimbo {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";

void addLine(std::vector<HypertextPiece>& pieces, std::string_view line) {
  const auto start = line.find_first_not_of(kBlanks);
  if (start == std::string_view::npos) return;
  pieces.push_back({std::string(line.substr(start, line.find_last_not_of(kBlanks) + 1 - start)), std::nullopt});
}

void addLines(std::vector<HypertextPiece>& pieces, std::string_view text) {
  while (!text.empty()) {
    const auto end = std::min(text.find('\n'), text.size());
    addLine(pieces, text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
}

}  // namespace

std::optional<std::vector<HypertextPiece>> takeApart(std::string_view text,
                                                     const std::vector<HypertextChild>& children) {
  std::vector<HypertextPiece> pieces;
  std::string line;
  for (std::size_t index = 0; index < children.size(); ++index) {
    const HypertextChild& child = children[index];
    if (text.starts_with(kPlaceOfAnObject)) {
      text.remove_prefix(kPlaceOfAnObject.size());
      if (child.isInLine) {
        line += child.text;
        continue;
      }
      addLines(pieces, std::exchange(line, {}));
      pieces.push_back({{}, index});
    } else {
      if (child.text.empty() || !text.starts_with(child.text)) return std::nullopt;
      text.remove_prefix(child.text.size());
      line += child.text;
    }
  }
  if (!text.empty()) return std::nullopt;
  addLines(pieces, line);
  return pieces;
}

}  // namespace nimbo
