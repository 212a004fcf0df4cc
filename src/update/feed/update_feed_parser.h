// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include "update/feed/update_item.h"

namespace nimbo {

inline constexpr std::size_t kMaximumFeedBytes = std::size_t{1} << 20;
inline constexpr std::size_t kMaximumFeedItems = 1000;

/// The well-formed items of a feed, in its order; nothing is verified yet. Absent when `xml`, which anybody
/// may have written, is no feed of this program: another document, one with a document type, too large,
/// with too many items or nested too deeply.
[[nodiscard]] std::optional<std::vector<UpdateItem>> parseUpdateFeed(std::string_view xml);

}  // namespace nimbo
