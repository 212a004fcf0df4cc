// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "base/result.h"

namespace nimbo {

struct ApplicationInstanceHandlers {
  /// The user started the program again.
  std::function<void()> activate;
  /// Links for the program, as given; at least one.
  std::function<void(const std::vector<std::string>& links)> open;
  /// What else may be asked, by name.
  std::map<std::string, std::function<void()>, std::less<>> actions{};
};

enum class InstanceRole {
  first,  ///< this process is the running program and is told of later starts
  later,  ///< another one runs; it has been given the links and this process should end
};

struct InstanceError {
  std::string message;  ///< one finished sentence for standard error
};

/// Makes sure that one program runs per session. Main thread only.
class ApplicationInstance {
 public:
  virtual ~ApplicationInstance() = default;

  /// Called once, before the loop runs; waits for the session's answer, a few seconds at most.
  /// Handlers are called from the main loop, for as long as this object lives.
  [[nodiscard]] virtual Result<InstanceRole, InstanceError> claim(const std::vector<std::string>& links,
                                                                  ApplicationInstanceHandlers handlers) = 0;
  /// The program ends: a start from now on is a first one. No handler is called any more. Does not wait.
  virtual void release() = 0;
};

}  // namespace nimbo
