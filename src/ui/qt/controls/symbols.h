// SPDX-License-Identifier: MIT
#pragma once

#include <QPainterPath>
#include <optional>
#include <string>

namespace nimbo {

/// The outline of a symbol inside a square of side 1 with the origin at the top left; absent for a
/// name that is not known. A sign that many fonts lack goes by itself as the name.
[[nodiscard]] std::optional<QPainterPath> symbolPath(const std::string& name);

}  // namespace nimbo
