// SPDX-License-Identifier: MIT
#pragma once

#include <pthread.h>
#include <sys/resource.h>
#include <unistd.h>

#include <string>

namespace nimbo {

/// A UtilityThread: at nice 10. The kernel keeps the first 15 bytes of a name.
inline void makeUtilityThread(const std::string& name) {
  constexpr int kUtilityNice = 10;
  if (!name.empty()) pthread_setname_np(pthread_self(), name.substr(0, 15).c_str());
  // On Linux a thread has a nice value of its own, addressed by its thread id.
  setpriority(PRIO_PROCESS, static_cast<id_t>(gettid()), kUtilityNice);
}

}  // namespace nimbo
