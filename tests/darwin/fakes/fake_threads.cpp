// SPDX-License-Identifier: MIT
#include "darwin/fakes/fake_threads.h"

#include <fcntl.h>
#include <spawn.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#undef posix_spawnattr_setflags
#undef pthread_setname_np

namespace nimbo {
namespace {

thread_local qos_class_t qosClass = 0;

}  // namespace

qos_class_t classOfThisThread() { return qosClass; }

}  // namespace nimbo

int pthread_set_qos_class_self_np(qos_class_t qos, int relativePriority) {
  if (relativePriority > 0) return EINVAL;
  nimbo::qosClass = qos;
  return 0;
}

int pthread_setname_of_this(const char* name) {
  constexpr std::size_t kLongest = 63;
  if (std::strlen(name) > kLongest) return ENAMETOOLONG;
  return ::pthread_setname_np(::pthread_self(), std::string(name).substr(0, 15).c_str());
}

// What is open now is closed in every program that is started from here on, as with the flag in this one.
int spawnattr_setflags_with_cloexec(posix_spawnattr_t* attributes, short flags) {
  if ((flags & POSIX_SPAWN_CLOEXEC_DEFAULT) != 0) {
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator("/dev/fd", error)) {
      const int descriptor = std::atoi(entry.path().filename().c_str());
      if (descriptor > 2) ::fcntl(descriptor, F_SETFD, FD_CLOEXEC);
    }
  }
  return ::posix_spawnattr_setflags(attributes, static_cast<short>(flags & ~POSIX_SPAWN_CLOEXEC_DEFAULT));
}
