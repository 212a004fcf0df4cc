// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

#include "update/feed/update_item.h"

namespace nimbo {

/// Whether the owner of `publicKey` (Ed25519, in base64) has signed what the item says.
[[nodiscard]] bool isSigned(const UpdateItem& item, const std::string& publicKey);

/// Whether `package` is the very one that the item describes. Takes a second for 300 MB.
[[nodiscard]] bool describes(const UpdateItem& item, std::string_view package);

}  // namespace nimbo
