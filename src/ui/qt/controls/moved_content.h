// SPDX-License-Identifier: MIT
#pragma once

#include "base/geometry.h"

namespace nimbo {

/// The same content with its frame counted from the top left corner of `parent` instead of from
/// where the frame of `parent` is counted from.
template <class Content>
[[nodiscard]] Content movedInto(const Rect& parent, Content content) {
  content.frame.x -= parent.x;
  content.frame.y -= parent.y;
  return content;
}

}  // namespace nimbo
