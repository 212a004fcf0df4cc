// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "platform/linux/files/unique_fd.h"

namespace nimbo {

/// A stream connected to the socket at `path`, which never blocks; invalid when nobody listens there.
[[nodiscard]] UniqueFd connectToUnixSocket(const std::string& path);

/// Sends a short message whole; false when the other side takes it no more.
[[nodiscard]] bool sendWhole(const UniqueFd& socket, const std::string& bytes);

/// Adds what has arrived to `bytes`; false when the other side has ended the stream.
[[nodiscard]] bool receiveAvailable(const UniqueFd& socket, std::string& bytes);

}  // namespace nimbo
