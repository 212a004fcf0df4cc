// SPDX-License-Identifier: MIT
#pragma once

#include <pthread.h>

#include <string>

namespace nimbo {

/// A UtilityThread: of the class that the system lets wait for those that somebody waits for.
inline void makeUtilityThread(const std::string& name) {
  if (!name.empty()) pthread_setname_np(name.c_str());
  pthread_set_qos_class_self_np(QOS_CLASS_UTILITY, 0);
}

}  // namespace nimbo
