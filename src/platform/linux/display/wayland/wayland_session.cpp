// SPDX-License-Identifier: MIT
#include "platform/linux/display/wayland/wayland_session.h"

#include <poll.h>

#include <algorithm>
#include <utility>

namespace nimbo {

/// What the compositor tells; `self` is the session unless said otherwise.
struct WaylandSession::Listeners {
  static WaylandSession& session(void* self) { return *static_cast<WaylandSession*>(self); }

  static constexpr wl_registry_listener kRegistry = {
      [](void* self, wl_registry* /*registry*/, std::uint32_t name, const char* interface, std::uint32_t version) {
        session(self).announced(name, interface, version);
      },
      [](void* self, wl_registry* /*registry*/, std::uint32_t name) {
        session(self).outputs_.remove_if([name](const Output& output) { return output.name == name; });
      }};

  static constexpr wl_callback_listener kAnswer = {
      [](void* self, wl_callback* /*callback*/, std::uint32_t /*data*/) { session(self).answered_ = true; }};

  static constexpr ext_idle_notification_v1_listener kNotification = {
      [](void* self, ext_idle_notification_v1* /*notification*/) { session(self).inputPauses_ = true; },
      [](void* self, ext_idle_notification_v1* /*notification*/) { session(self).inputPauses_ = false; }};

  static constexpr org_kde_kwin_idle_timeout_listener kKwinNotification = {
      [](void* self, org_kde_kwin_idle_timeout* /*timeout*/) { session(self).inputPauses_ = true; },
      [](void* self, org_kde_kwin_idle_timeout* /*timeout*/) { session(self).inputPauses_ = false; }};

  // For these it is the output.
  static constexpr zwlr_output_power_v1_listener kPower = {
      [](void* /*self*/, zwlr_output_power_v1* /*power*/, std::uint32_t /*mode*/) {},
      [](void* self, zwlr_output_power_v1* /*power*/) {
        auto& output = *static_cast<Output*>(self);
        output.power.reset();
        output.refuses = true;
      }};
};

WaylandSession::WaylandSession(MainLoop& loop, const std::string& socket, std::function<void(bool connected)> handled)
    : handled_(std::move(handled)), display_(wl_display_connect(socket.c_str())) {
  if (!display_) {
    const auto now = std::chrono::system_clock::time_point{};
    events_ = loop.at(now, std::chrono::milliseconds::zero(), [tell = handled_] { tell(false); });
    return;
  }
  registry_.reset(wl_display_get_registry(display_.get()));
  wl_registry_add_listener(registry_.get(), &Listeners::kRegistry, this);
  askForAnswer();
  events_ = loop.watch(wl_display_get_fd(display_.get()), [this] {
    const auto tell = handled_;  // which outlives this object
    tell(handleEvents());
  });
}

void WaylandSession::askForAnswer() {
  answered_ = false;
  answer_.reset(wl_display_sync(display_.get()));
  wl_callback_add_listener(answer_.get(), &Listeners::kAnswer, this);
  wl_display_flush(display_.get());
}

void WaylandSession::waitForAnswer(std::chrono::milliseconds limit) {
  using std::chrono::steady_clock;
  askForAnswer();
  const auto end = steady_clock::now() + limit;
  while (!answered_) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - steady_clock::now());
    pollfd events{wl_display_get_fd(display_.get()), POLLIN, 0};
    if (left.count() <= 0 || ::poll(&events, 1, static_cast<int>(left.count())) <= 0 || !handleEvents()) return;
  }
}

// Reads what is there, and never waits for more.
bool WaylandSession::handleEvents() {
  const bool read = wl_display_prepare_read(display_.get()) != 0 || wl_display_read_events(display_.get()) == 0;
  return read && wl_display_dispatch_pending(display_.get()) >= 0;
}

template <class Proxy>
WaylandSession::Owned<Proxy> WaylandSession::bind(std::uint32_t name, const wl_interface& interface,
                                                  std::uint32_t version) const {
  return Owned<Proxy>(static_cast<Proxy*>(wl_registry_bind(registry_.get(), name, &interface, version)));
}

void WaylandSession::announced(std::uint32_t name, const std::string& interface, std::uint32_t version) {
  if (interface == wl_output_interface.name) {
    outputs_.push_back({name, bind<wl_output>(name, wl_output_interface)});
  } else if (interface == wl_seat_interface.name && !seat_) {
    seat_ = bind<wl_seat>(name, wl_seat_interface);
  } else if (interface == ext_idle_notifier_v1_interface.name) {
    notifier_ = bind<ext_idle_notifier_v1>(name, ext_idle_notifier_v1_interface, std::min(version, 2U));
  } else if (interface == org_kde_kwin_idle_interface.name) {
    kwinNotifier_ = bind<org_kde_kwin_idle>(name, org_kde_kwin_idle_interface);
  } else if (interface == zwlr_output_power_manager_v1_interface.name) {
    powerManager_ = bind<zwlr_output_power_manager_v1>(name, zwlr_output_power_manager_v1_interface);
  }
}

bool WaylandSession::canTurnOutputsOff() const { return seat_ && (notifier_ || kwinNotifier_) && powerManager_; }

void WaylandSession::watchInput(std::chrono::milliseconds pause) {
  const auto milliseconds = static_cast<std::uint32_t>(pause.count());
  inputPauses_ = false;
  if (notifier_) {
    // A film that keeps the session from being idle is no input.
    const auto get = ext_idle_notifier_v1_get_version(notifier_.get()) >= 2
                         ? ext_idle_notifier_v1_get_input_idle_notification
                         : ext_idle_notifier_v1_get_idle_notification;
    notification_.reset(get(notifier_.get(), milliseconds, seat_.get()));
    ext_idle_notification_v1_add_listener(notification_.get(), &Listeners::kNotification, this);
  } else {
    kwinNotification_.reset(org_kde_kwin_idle_get_idle_timeout(kwinNotifier_.get(), seat_.get(), milliseconds));
    org_kde_kwin_idle_timeout_add_listener(kwinNotification_.get(), &Listeners::kKwinNotification, this);
  }
  wl_display_flush(display_.get());
}

void WaylandSession::turnOutputs(bool on) {
  if (!powerManager_) return;
  for (Output& output : outputs_) {
    if (!output.power) {
      output.power.reset(zwlr_output_power_manager_v1_get_output_power(powerManager_.get(), output.output.get()));
      zwlr_output_power_v1_add_listener(output.power.get(), &Listeners::kPower, &output);
      output.refuses = false;
    }
    zwlr_output_power_v1_set_mode(output.power.get(),
                                  on ? ZWLR_OUTPUT_POWER_V1_MODE_ON : ZWLR_OUTPUT_POWER_V1_MODE_OFF);
  }
  wl_display_flush(display_.get());
}

// A screen that is off may unplug itself; that is no refusal.
bool WaylandSession::outputsRefuse() const {
  return !outputs_.empty() &&
         std::all_of(outputs_.begin(), outputs_.end(), [](const Output& output) { return output.refuses; });
}

}  // namespace nimbo
