// SPDX-License-Identifier: MIT
#include "platform/linux/accessibility/hypertext.h"

#include <utility>

#include "base/text.h"

namespace nimbo {
namespace {

void addLines(std::vector<HypertextPiece>& pieces, std::string_view text) {
  while (!text.empty()) {
    const std::string_view line = trimmed(takeUntil(text, '\n'));
    if (!line.empty()) pieces.push_back({std::string(line), std::nullopt});
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
