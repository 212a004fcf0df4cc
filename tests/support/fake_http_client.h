// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/http_client.h"

namespace nimbo {

/// A network on which every answer is given by hand. Its subscriptions may outlive it.
class FakeHttpClient final : public HttpClient {
 public:
  [[nodiscard]] Subscription get(HttpRequest request, std::function<void(Answer)> done) override {
    requests.push_back(std::move(request));
    const std::size_t id = requests.size();
    state_->pending[id] = std::move(done);
    return Subscription([weak = std::weak_ptr(state_), id] {
      const auto state = weak.lock();
      if (state && state->pending.erase(id) > 0) ++state->cancelled;
    });
  }

  /// Answers the oldest request that nobody has cancelled; false when there is none.
  bool answer(Answer answer) {
    if (state_->pending.empty()) return false;
    const auto oldest = state_->pending.extract(state_->pending.begin());
    oldest.mapped()(std::move(answer));
    return true;
  }
  bool answer(int status, std::string body = {}, std::vector<std::pair<std::string, std::string>> headers = {}) {
    return answer(HttpResponse{status, std::move(headers), std::move(body)});
  }
  bool fail(HttpFailure failure) { return answer(tl::unexpected(failure)); }

  [[nodiscard]] std::size_t pending() const { return state_->pending.size(); }
  /// Requests taken back before they were answered.
  [[nodiscard]] std::size_t cancelled() const { return state_->cancelled; }

  std::vector<HttpRequest> requests;  ///< all ever made

 private:
  struct State {
    std::map<std::size_t, std::function<void(Answer)>> pending;
    std::size_t cancelled = 0;
  };
  std::shared_ptr<State> state_ = std::make_shared<State>();
};

}  // namespace nimbo
