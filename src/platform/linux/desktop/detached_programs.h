// SPDX-License-Identifier: MIT
#pragma once

#include <list>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/files/unique_fd.h"
#include "platform/main_loop.h"

namespace nimbo {

/// The full path of an executable file `name` in the first absolute folder of `searchPath` (in the
/// form of PATH) that has one.
[[nodiscard]] std::optional<std::string> findProgram(const std::string& name, const std::string& searchPath);

/// Starts programs that go on by themselves, in sessions of their own, and reaps them when they
/// end. Destroying it leaves them running. Main thread only.
class DetachedPrograms {
 public:
  explicit DetachedPrograms(MainLoop& loop) : loop_(loop) {}
  DetachedPrograms(const DetachedPrograms&) = delete;
  DetachedPrograms& operator=(const DetachedPrograms&) = delete;

  /// False when the program could not be started.
  [[nodiscard]] bool start(const std::string& path, const std::vector<std::string>& arguments = {});

 private:
  struct Child {
    UniqueFd process;
    Subscription ended;
  };

  MainLoop& loop_;
  std::list<Child> children_;
};

}  // namespace nimbo
