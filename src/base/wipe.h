// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>

namespace nimbo {

/// Overwrites a secret and empties it, so that the memory it leaves behind does not hold it.
inline void wipe(std::string& secret) {
  secret.resize(secret.capacity());
  // Volatile, because a compiler may drop writes to memory that nobody reads again.
  volatile char* const bytes = secret.data();
  for (std::size_t index = 0; index < secret.size(); ++index) bytes[index] = 0;
  secret.clear();
}

}  // namespace nimbo
