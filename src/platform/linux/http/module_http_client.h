// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <memory>
#include <thread>

#include "platform/bundle.h"
#include "platform/http_client.h"
#include "platform/linux/http/http_transfer.h"
#include "platform/main_loop.h"

namespace nimbo {

/// Requests through the module "nimbo-http", which is loaded by the first one, each on a thread of
/// its own. Without the module nothing can be reached.
class ModuleHttpClient final : public HttpClient {
 public:
  /// `loop` and `modules` outlive it.
  ModuleHttpClient(MainLoop& loop, ModuleLoader& modules, HttpOptions options);
  /// Cancels what is under way; no `done` is called afterwards.
  ~ModuleHttpClient() override { calls_->clear(); }
  ModuleHttpClient(const ModuleHttpClient&) = delete;
  ModuleHttpClient& operator=(const ModuleHttpClient&) = delete;

  [[nodiscard]] Subscription get(HttpRequest request, std::function<void(Answer)> done) override;

 private:
  using Id = unsigned;
  struct Call {
    std::function<void(Answer)> done;  ///< null when nobody wants the answer any more
    std::jthread thread;
  };
  using Calls = std::map<Id, Call>;

  [[nodiscard]] std::jthread start(Id id, HttpRequest request);
  void postAnswer(Id id, Answer answer);

  MainLoop& loop_;
  ModuleLoader& modules_;
  const HttpOptions options_;
  Id lastId_ = 0;
  std::shared_ptr<Calls> calls_ = std::make_shared<Calls>();  // main thread only
};

}  // namespace nimbo
