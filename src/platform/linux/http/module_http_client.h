// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <memory>
#include <stop_token>
#include <string>
#include <thread>

#include "platform/bundle.h"
#include "platform/http_client.h"
#include "platform/main_loop.h"

namespace nimbo {

/// What holds for every request.
struct HttpOptions {
  std::string userAgent;
  std::string certificateFile;    ///< trusted authorities, as in SSL_CERT_FILE; empty for the system's
  std::string certificateFolder;  ///< the same for SSL_CERT_DIR
};

/// The one function that the module "nimbo-http" exports, under the name kHttpTransferName. Carries out
/// a request: blocks until there is an answer, a limit is reached or it is asked to stop. Any thread.
using HttpTransfer = void (*)(HttpRequest request, const HttpOptions& options, const std::stop_token& stop,
                              HttpClient::Answer& answer);
inline constexpr const char* kHttpTransferName = "nimboHttpTransfer";

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
