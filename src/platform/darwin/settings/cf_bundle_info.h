// SPDX-License-Identifier: MIT
#pragma once

#include "platform/bundle.h"

namespace nimbo {

/// From the information dictionary of the application that this program is the executable of; of a program that lies
/// in none everything is absent.
[[nodiscard]] BundleInfo readBundleInfo();

}  // namespace nimbo
