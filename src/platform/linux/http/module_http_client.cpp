// SPDX-License-Identifier: MIT
#include "platform/linux/http/module_http_client.h"

#include <pthread.h>
#include <signal.h>

#include <system_error>
#include <utility>

#include "base/wipe.h"

namespace nimbo {
namespace {

// Writing to a connection that has gone may raise SIGPIPE, for the writing thread.
void blockSignals() {
  sigset_t all;
  sigfillset(&all);
  ::pthread_sigmask(SIG_SETMASK, &all, nullptr);
}

void wipeValues(HttpRequest& request) {
  for (auto& [name, value] : request.headers) wipe(value);
}

}  // namespace

ModuleHttpClient::ModuleHttpClient(MainLoop& loop, ModuleLoader& modules, HttpOptions options)
    : loop_(loop), modules_(modules), options_(std::move(options)) {}

ModuleHttpClient::~ModuleHttpClient() {
  for (auto& [id, call] : *calls_) {
    if (call.transfer) call.transfer->cancel();
  }
  for (auto& [id, call] : *calls_) {
    if (call.thread.joinable()) call.thread.join();
  }
}

Subscription ModuleHttpClient::get(HttpRequest request, std::function<void(Answer)> done) {
  const Id id = ++lastId_;
  Call& call = (*calls_)[id];
  call.done = std::move(done);
  call.transfer = makeTransfer(std::move(request));
  start(id, call);
  return Subscription([weak = std::weak_ptr(calls_), id] {
    const auto calls = weak.lock();
    if (calls == nullptr || !calls->contains(id)) return;
    Call& cancelled = calls->at(id);
    if (cancelled.transfer) cancelled.transfer->cancel();
    cancelled.done = nullptr;
  });
}

std::shared_ptr<HttpTransfer> ModuleHttpClient::makeTransfer(HttpRequest request) {
  const auto symbol = modules_.symbol("nimbo-http", kHttpTransferEntryName);
  if (symbol) {
    return std::shared_ptr<HttpTransfer>(reinterpret_cast<HttpTransferEntry>(*symbol)(std::move(request), options_));
  }
  wipeValues(request);
  return nullptr;
}

void ModuleHttpClient::start(Id id, Call& call) {
  if (call.transfer == nullptr) return postAnswer(id, tl::unexpected(HttpFailure::unreachable));
  try {
    call.thread = std::thread([this, id, transfer = call.transfer] {
      ::pthread_setname_np(::pthread_self(), "Nimbo.http");
      blockSignals();
      postAnswer(id, transfer->perform());
    });
  } catch (const std::system_error&) {
    postAnswer(id, tl::unexpected(HttpFailure::unreachable));
  }
}

void ModuleHttpClient::postAnswer(Id id, Answer answer) {
  loop_.post([weak = std::weak_ptr(calls_), id, answer = std::move(answer)]() mutable {
    if (const auto calls = weak.lock()) finish(*calls, id, std::move(answer));
  });
}

void ModuleHttpClient::finish(Calls& calls, Id id, Answer answer) {
  auto node = calls.extract(id);
  Call& call = node.mapped();
  // It has posted this as the last thing it does.
  if (call.thread.joinable()) call.thread.join();
  if (call.done) call.done(std::move(answer));
}

}  // namespace nimbo
