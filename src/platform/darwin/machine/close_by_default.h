// SPDX-License-Identifier: MIT
#pragma once

#include <spawn.h>

namespace nimbo {

/// A DescriptorGuard: the kernel closes all that no step of the spawn has made.
inline int closeByDefault(posix_spawnattr_t* attributes, posix_spawn_file_actions_t* /*steps*/, int /*first*/) {
  short flags = 0;
  const int error = ::posix_spawnattr_getflags(attributes, &flags);
  if (error != 0) return error;
  return ::posix_spawnattr_setflags(attributes, static_cast<short>(flags | POSIX_SPAWN_CLOEXEC_DEFAULT));
}

}  // namespace nimbo
