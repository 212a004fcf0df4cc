// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nimbo {

/// What stands in a text for a child that is more than text: U+FFFC.
inline constexpr std::string_view kPlaceOfAnObject = "\uFFFC";

/// A child of an element as its parent's text may hold it.
struct HypertextChild {
  std::string text;       ///< what it shows itself
  bool isInLine = false;  ///< it stands in its parent's line, like a word in bold
};

/// One thing after another of what an element shows: a line of text, or one of its children.
struct HypertextPiece {
  std::string line;
  std::optional<std::size_t> child;  ///< its index; then there is no line
  bool operator==(const HypertextPiece&) const = default;
};

/// Takes apart the text of an element with children. A web engine puts text children into it as they
/// are and U+FFFC for every other one; words that several children make up come back as one line.
/// Absent when the text is not made of these children.
[[nodiscard]] std::optional<std::vector<HypertextPiece>> takeApart(std::string_view text,
                                                                   const std::vector<HypertextChild>& children);

}  // namespace nimbo
