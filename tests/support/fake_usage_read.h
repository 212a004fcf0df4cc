// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "usage/usage_model.h"

namespace nimbo {

/// A provider that answers when the test says so. Its subscriptions may outlive it.
class FakeUsageRead {
 public:
  [[nodiscard]] UsageRead read() {
    return [this](UsageRequest request, std::function<void(UsageOutcome)> done) {
      requests.push_back(request);
      const int id = static_cast<int>(requests.size());
      (*running_)[id] = done;
      last_ = std::move(done);
      return Subscription([running = running_, id] { running->erase(id); });
    };
  }

  /// Answers the read that runs.
  bool finish(UsageOutcome outcome) {
    if (running_->empty()) return false;
    const auto done = running_->begin()->second;
    done(std::move(outcome));
    return true;
  }
  bool fail(const std::string& message) { return finish(tl::unexpected(UsageError{message})); }

  /// A careless reader: calls back although nobody wants it any more.
  void finishLate(UsageOutcome outcome) const { last_(std::move(outcome)); }

  [[nodiscard]] std::size_t running() const { return running_->size(); }

  std::vector<UsageRequest> requests;

 private:
  using Running = std::map<int, std::function<void(UsageOutcome)>>;
  std::shared_ptr<Running> running_ = std::make_shared<Running>();
  std::function<void(UsageOutcome)> last_;
};

}  // namespace nimbo
