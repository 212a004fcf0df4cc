// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace nimbo {

/// What Debian calls the processor that this program was built for, such as "amd64"; empty when it has no
/// name for it. A package for another one would not run where this does.
[[nodiscard]] std::string debianArchitecture();

/// Version of the C library that is running, such as "2.36"; empty when it is not GNU's.
[[nodiscard]] std::string systemVersion();

}  // namespace nimbo
