// SPDX-License-Identifier: MIT
#include "platform/darwin/loop/dispatch_termination.h"

#include <signal.h>

#include <utility>

namespace nimbo {
namespace {

/// What else the signal does is to be nothing. Not by ignoring it, which programs that are started would inherit; one
/// that was ignored stays so.
void disarm(int signal) {
  struct sigaction action {};
  ::sigaction(signal, nullptr, &action);
  if (action.sa_handler == SIG_IGN) return;
  action = {};
  action.sa_handler = [](int) {};
  action.sa_flags = SA_RESTART;
  ::sigaction(signal, &action, nullptr);
}

}  // namespace

DispatchTermination::DispatchTermination() {
  const auto add = [this](int signal, dispatch_function_t handler) {
    disarm(signal);
    auto* const source = dispatch_source_create(DISPATCH_SOURCE_TYPE_SIGNAL, static_cast<uintptr_t>(signal), 0,
                                                dispatch_get_main_queue());
    dispatch_set_context(source, this);
    dispatch_source_set_event_handler_f(source, handler);
    dispatch_resume(source);
    sources_.emplace_back(source);
  };
  const dispatch_function_t request = [](void* self) {
    static_cast<DispatchTermination*>(self)->requested(Cause::request);
  };
  add(SIGTERM, request);
  add(SIGHUP, request);
  add(SIGINT, [](void* self) { static_cast<DispatchTermination*>(self)->requested(Cause::interrupt); });
}

Subscription DispatchTermination::observe(std::function<void(Cause)> requested) {
  requested_ = std::move(requested);
  return Subscription([this] { requested_ = nullptr; });
}

void DispatchTermination::requested(Cause cause) const {
  const auto call = requested_;
  if (call) call(cause);
}

}  // namespace nimbo
