// SPDX-License-Identifier: MIT
#include "platform/linux/loop/signal_termination.h"

#include <pthread.h>
#include <signal.h>

#include <array>
#include <system_error>
#include <utility>

namespace nimbo {

SignalTermination::SignalTermination(SdEventMainLoop& loop) {
  constexpr std::array kSignals{SIGTERM, SIGINT, SIGHUP};
  sigset_t set;
  sigemptyset(&set);
  for (const int number : kSignals) sigaddset(&set, number);
  pthread_sigmask(SIG_BLOCK, &set, nullptr);
  for (const int number : kSignals) {
    const int result = sd_event_add_signal(loop.event(), sources_.emplace_back().out(), number, onSignal, this);
    if (result < 0) throw std::system_error(-result, std::generic_category(), "signals");
  }
}

Subscription SignalTermination::observe(std::function<void(Cause)> requested) {
  requested_ = std::move(requested);
  return Subscription([this] { requested_ = nullptr; });
}

int SignalTermination::onSignal(sd_event_source* /*source*/, const signalfd_siginfo* info, void* self) {
  const auto requested = static_cast<SignalTermination*>(self)->requested_;
  if (requested) requested(info->ssi_signo == SIGINT ? Cause::interrupt : Cause::request);
  return 0;
}

}  // namespace nimbo
