// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <functional>
#include <string>

#include "platform/linux/files/unique_fd.h"
#include "platform/main_loop.h"

namespace nimbo {

/// One command to sway over its socket, in the way of sway-ipc(7). Main thread only.
class SwayCommand {
 public:
  /// Sends `command` at once. `done` is called once, later, with whether sway carried it out; it
  /// may destroy this object, which silences it.
  SwayCommand(MainLoop& loop, const std::string& socket, const std::string& command,
              std::function<void(bool carriedOut)> done);
  SwayCommand(const SwayCommand&) = delete;
  SwayCommand& operator=(const SwayCommand&) = delete;

 private:
  void receive();

  std::function<void(bool carriedOut)> done_;
  UniqueFd socket_;
  std::string received_;
  Subscription readable_;
};

/// Sends `command` and waits for the answer, but not longer than `limit`: for the end of the program.
void runLastSwayCommand(const std::string& socket, const std::string& command, std::chrono::milliseconds limit);

}  // namespace nimbo
