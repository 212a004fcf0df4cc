// SPDX-License-Identifier: MIT
#pragma once

#include <nlohmann/json_fwd.hpp>

#include "platform/darwin/core/cf_object.h"

namespace nimbo {

// Property lists as JSON and back, without loss: dates and data, which JSON does not know, become its binary values,
// which read as none of a preference's types.

/// null for what is no property list, and for what lies deeper than 64 levels.
[[nodiscard]] nlohmann::json jsonOf(CFPropertyListRef value);

/// Nothing for null, which property lists do not know; arrays and objects leave it out.
[[nodiscard]] CfObject<CFTypeRef> propertyListOf(const nlohmann::json& value);

}  // namespace nimbo
