// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string_view>

#include "platform/bundle.h"

namespace nimbo {

/// From the text of an Info.json, which names its values like a property list does. Everything is absent
/// when the text is no JSON object.
[[nodiscard]] BundleInfo parseBundleInfo(std::string_view text);

/// From the file; everything is absent when it cannot be read.
[[nodiscard]] BundleInfo readBundleInfo(const std::filesystem::path& file);

}  // namespace nimbo
