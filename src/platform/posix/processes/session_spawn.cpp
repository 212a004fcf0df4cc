// SPDX-License-Identifier: MIT
#include "platform/posix/processes/session_spawn.h"

#include <signal.h>

namespace nimbo {

std::vector<char*> pointers(std::vector<std::string>& texts) {
  std::vector<char*> result;
  result.reserve(texts.size() + 1);
  for (std::string& text : texts) result.push_back(text.data());
  result.push_back(nullptr);
  return result;
}

std::vector<std::string> commandOf(const std::string& executable, const std::vector<std::string>& arguments) {
  std::vector<std::string> words{executable};
  words.insert(words.end(), arguments.begin(), arguments.end());
  return words;
}

Result<pid_t, std::error_code> spawnSession(SessionProgram program, DescriptorGuard guard,
                                            const std::function<int(posix_spawn_file_actions_t* steps)>& prepare) {
  const std::vector<char*> words = pointers(program.words);

  sigset_t none;
  sigset_t all;
  sigemptyset(&none);
  sigfillset(&all);
  for (const int fixed : {SIGKILL, SIGSTOP}) sigdelset(&all, fixed);
  posix_spawnattr_t attributes;
  ::posix_spawnattr_init(&attributes);
  ::posix_spawnattr_setsigmask(&attributes, &none);
  ::posix_spawnattr_setsigdefault(&attributes, &all);
  ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
  posix_spawn_file_actions_t steps;
  ::posix_spawn_file_actions_init(&steps);

  pid_t pid = 0;
  int error = prepare(&steps);
  if (error == 0) error = guard(&attributes, &steps, program.firstClosed);
  if (error == 0) {
    error = ::posix_spawn(&pid, program.executable.c_str(), &steps, &attributes, words.data(), program.environment);
  }
  ::posix_spawn_file_actions_destroy(&steps);
  ::posix_spawnattr_destroy(&attributes);
  if (error != 0) return tl::unexpected(std::error_code(error, std::generic_category()));
  return pid;
}

}  // namespace nimbo
