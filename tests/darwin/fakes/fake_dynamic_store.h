// SPDX-License-Identifier: MIT
#pragma once

#include <set>
#include <string>
#include <vector>

struct __SCDynamicStore;

namespace nimbo::fake {

/// The system's dynamic store; one at a time.
struct DynamicStore {
  DynamicStore();
  ~DynamicStore();
  DynamicStore(const DynamicStore&) = delete;
  DynamicStore& operator=(const DynamicStore&) = delete;

  /// Gives the key a value or takes it away, and tells those who asked for it.
  void set(const std::string& key, bool hasValue);

  std::set<std::string> values;
  // What fails:
  bool connects = true;
  bool watches = true;
  bool notifies = true;
  std::vector<__SCDynamicStore*> connections;
};

}  // namespace nimbo::fake
