// SPDX-License-Identifier: MIT
#pragma once

#include <ApplicationServices/ApplicationServices.h>

#include <deque>
#include <set>

#include "darwin/fakes/fake_core_foundation.h"
#include "support/fake_clock.h"

namespace nimbo::fake {

/// The accessibility of one application while it lives; one at a time. Time passes when a call waits.
class Ax {
 public:
  struct Node {
    std::map<std::string, Held> attributes;  ///< but the children
    std::vector<Node*> children;             ///< anything, also itself
  };

  explicit Ax(FakeClock& time);
  ~Ax();
  Ax(const Ax&) = delete;
  Ax& operator=(const Ax&) = delete;

  [[nodiscard]] Node& add(std::map<std::string, Held> attributes) {
    return nodes_.emplace_back(Node{std::move(attributes), {}});
  }

  static constexpr pid_t kProcess = 4711;
  bool isTrusted = true;
  int timesPrompted = 0;
  std::vector<Node*> windows;
  bool showsContent = true;  ///< else only once somebody sets AXManualAccessibility
  bool isGone = false;       ///< the process
  bool hangs = false;
  std::map<std::string, AXError> failures;  ///< by attribute
  int calls = 0;                            ///< to the application
  FakeClock& clock;

 private:
  std::deque<Node> nodes_;
};

}  // namespace nimbo::fake
