// SPDX-License-Identifier: MIT
#include "update/feed/update_choice.h"

#include <algorithm>

#include "update/feed/update_item.h"

namespace nimbo {
namespace {

bool runsOn(const UpdateItem& item, const UpdateTarget& target) {
  if (item.architecture != target.architecture) return false;
  return item.minimumSystem.empty() || (isVersion(target.system) && !isNewerVersion(item.minimumSystem, target.system));
}

}  // namespace

Result<UpdateItem, NoUpdate> chooseUpdate(std::vector<UpdateItem> items, const UpdateTarget& target,
                                          const std::function<bool(const UpdateItem&)>& genuine) {
  std::erase_if(items, [&](const UpdateItem& item) { return !isNewerVersion(item.version, target.version); });
  const bool forOthers = std::erase_if(items, [&](const UpdateItem& item) { return !runsOn(item, target); }) > 0;
  std::ranges::stable_sort(items, [](const UpdateItem& left, const UpdateItem& right) {
    return isNewerVersion(left.version, right.version);
  });
  const auto chosen = std::ranges::find_if(items, genuine);
  if (chosen != items.end()) return *chosen;
  if (!items.empty()) return tl::unexpected(NoUpdate::untrusted);
  return tl::unexpected(forOthers ? NoUpdate::otherSystem : NoUpdate::none);
}

}  // namespace nimbo
