// SPDX-License-Identifier: MIT
#include "platform/linux/http/module_http_client.h"

#include <pthread.h>
#include <signal.h>

#include <system_error>
#include <utility>

namespace nimbo {
namespace {

// Writing to a connection that has gone may raise SIGPIPE, for the writing thread.
void blockSignals() {
  sigset_t all;
  sigfillset(&all);
  ::pthread_sigmask(SIG_SETMASK, &all, nullptr);
}

}  // namespace

ModuleHttpClient::ModuleHttpClient(MainLoop& loop, ModuleLoader& modules, HttpOptions options)
    : loop_(loop), modules_(modules), options_(std::move(options)) {}

Subscription ModuleHttpClient::get(HttpRequest request, std::function<void(Answer)> done) {
  const Id id = ++lastId_;
  Call& call = (*calls_)[id];
  call.done = std::move(done);
  call.thread = start(id, std::move(request));
  return Subscription([weak = std::weak_ptr(calls_), id] {
    const auto calls = weak.lock();
    if (calls == nullptr || !calls->contains(id)) return;
    Call& cancelled = calls->at(id);
    cancelled.thread.request_stop();
    cancelled.done = nullptr;
  });
}

std::jthread ModuleHttpClient::start(Id id, HttpRequest request) {
  const auto symbol = modules_.symbol("nimbo-http", kHttpTransferName);
  try {
    if (symbol) {
      return std::jthread([this, id, transfer = reinterpret_cast<HttpTransfer>(*symbol),
                           request = std::move(request)](const std::stop_token& stop) mutable {
        ::pthread_setname_np(::pthread_self(), "Nimbo.http");
        blockSignals();
        Answer answer = tl::unexpected(HttpFailure::unreachable);
        transfer(std::move(request), options_, stop, answer);
        postAnswer(id, std::move(answer));
      });
    }
  } catch (const std::system_error&) {  // no thread to be had
  }
  postAnswer(id, tl::unexpected(HttpFailure::unreachable));
  return {};
}

void ModuleHttpClient::postAnswer(Id id, Answer answer) {
  loop_.post([weak = std::weak_ptr(calls_), id, answer = std::move(answer)]() mutable {
    const auto calls = weak.lock();
    if (calls == nullptr) return;
    // Its thread has posted this as the last thing it does.
    const Call call = std::move(calls->extract(id).mapped());
    if (call.done) call.done(std::move(answer));
  });
}

}  // namespace nimbo
