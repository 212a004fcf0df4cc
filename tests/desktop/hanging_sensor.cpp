// SPDX-License-Identifier: MIT
// Preloaded into the program: the thread that looks for temperature sensors never comes back, and is called so.
#include <dirent.h>
#include <dlfcn.h>
#include <pthread.h>
#include <unistd.h>

#include <string_view>

extern "C" __attribute__((visibility("default"))) DIR* opendir(const char* path) {
  static const auto real = reinterpret_cast<DIR* (*)(const char*)>(dlsym(RTLD_NEXT, "opendir"));
  if (std::string_view(path) == "/sys/class/hwmon/") {
    pthread_setname_np(pthread_self(), "hangs");
    while (true) pause();
  }
  return real(path);
}
