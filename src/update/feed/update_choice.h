// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "base/result.h"
#include "update/feed/update_item.h"

namespace nimbo {

/// The machine that an update would be for, and what it has.
struct UpdateTarget {
  std::string version;       ///< of the installed build
  std::string architecture;  ///< Debian's name
  std::string system;        ///< version of the C library
};

enum class NoUpdate {
  none,         ///< there is nothing newer
  otherSystem,  ///< what is newer is for other systems
  untrusted,    ///< what is newer is not signed as it should be
};

/// The newest item that is newer than what is installed, made for this system, and genuine. `genuine` is
/// only asked about those that would otherwise do.
[[nodiscard]] Result<UpdateItem, NoUpdate> chooseUpdate(std::vector<UpdateItem> items, const UpdateTarget& target,
                                                        const std::function<bool(const UpdateItem&)>& genuine);

}  // namespace nimbo
