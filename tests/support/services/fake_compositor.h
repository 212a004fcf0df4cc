// SPDX-License-Identifier: MIT
#pragma once

#include <ext-idle-notify-v1-server.h>
#include <idle-server.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <wayland-server.h>
#include <wlr-output-power-management-unstable-v1-server.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <list>
#include <memory>
#include <string>

#include "platform/main_loop.h"
#include "support/services/temporary_tree.h"

namespace nimbo {

/// A Wayland compositor with the input of a user whom the test plays, and outputs that go off and on by request only.
class FakeCompositor {
 public:
  enum class Idle { none, kwin, ext, extVersion2 };
  enum class Power { none, works, refuses };

  explicit FakeCompositor(MainLoop& loop, Idle idle = Idle::ext, Power power = Power::works, int outputs = 1)
      : idle_(idle), power_(power) {
    listen();
    wl_global_create(display(), &wl_seat_interface, 1, this, [](wl_client* client, void*, auto, auto id) {
      make(client, wl_seat_interface, 1, id, nullptr, nullptr);
    });
    for (int number = 0; number < outputs; ++number) plugIn();
    if (idle == Idle::kwin) announceKwinIdle();
    if (idle == Idle::ext || idle == Idle::extVersion2) announceIdle();
    if (power != Power::none) announcePower();
    events_ = loop.watch(wl_event_loop_get_fd(wl_display_get_event_loop(display())), [this] { serve(); });
  }
  ~FakeCompositor() { hangUp(); }
  FakeCompositor(const FakeCompositor&) = delete;
  FakeCompositor& operator=(const FakeCompositor&) = delete;

  [[nodiscard]] std::string socket() const { return (folder_.path() / "wayland").string(); }

  // What the user does.
  void pause() { tellInput(false); }
  void moveMouse() { tellInput(true); }
  void plugIn() {
    Output& output = outputs_.emplace_back(*this);
    output.global = wl_global_create(
        display(), &wl_output_interface, 1, &output,
        [](wl_client* client, void* self, auto, auto id) { make(client, wl_output_interface, 1, id, nullptr, self); });
    wl_display_flush_clients(display());
  }
  /// All of them.
  void unplug() {
    for (const Output& output : outputs_) {
      for (wl_resource* power : output.powers) zwlr_output_power_v1_send_failed(power);
      wl_global_remove(output.global);
    }
    unplugged_.splice(unplugged_.end(), outputs_);
    wl_display_flush_clients(display());
  }

  void hangUp() { wl_display_destroy_clients(display()); }
  void sendGarbage() {
    wl_client* client = nullptr;
    wl_client_for_each(client, wl_display_get_client_list(display())) {
      constexpr std::array<std::uint32_t, 2> kGarbage = {2, 8U << 16U | 99U};  // an event that no object has
      [[maybe_unused]] const auto sent =
          ::send(wl_client_get_fd(client), kGarbage.data(), sizeof kGarbage, MSG_NOSIGNAL);
    }
  }

  [[nodiscard]] bool hasClient() const { return wl_list_empty(wl_display_get_client_list(display())) == 0; }
  [[nodiscard]] bool watching() const { return !watchers_.empty(); }
  [[nodiscard]] int lit() const {
    return static_cast<int>(std::count_if(outputs_.begin(), outputs_.end(), [](const Output& o) { return o.on; }));
  }

  bool darkAtPlugIn = false;       ///< as sway is with a screen that went off and unplugged itself
  std::uint32_t watchedPause = 0;  ///< the last one asked for, in ms
  bool deafToInhibitors = false;   ///< and even when a film runs
  int requests = 0;                ///< to turn an output off or on

 private:
  struct Output {
    explicit Output(FakeCompositor& whole) : compositor(whole), on(!whole.darkAtPlugIn) {}
    void set(wl_resource* power, std::uint32_t mode) {
      ++compositor.requests;
      if (compositor.power_ == Power::refuses) return zwlr_output_power_v1_send_failed(power);
      on = mode == ZWLR_OUTPUT_POWER_V1_MODE_ON;
    }

    FakeCompositor& compositor;
    wl_global* global = nullptr;
    bool on;
    std::list<wl_resource*> powers = {};
  };
  struct End {
    void operator()(wl_display* display) const { wl_display_destroy(display); }
  };

  [[nodiscard]] wl_display* display() const { return display_.get(); }

  void listen() {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    socket().copy(address.sun_path, sizeof address.sun_path - 1);
    const int descriptor = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    ::bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address);
    ::listen(descriptor, 5);
    wl_display_add_socket_fd(display(), descriptor);
  }

  void serve() {
    wl_event_loop_dispatch(wl_display_get_event_loop(display()), 0);
    wl_display_flush_clients(display());
  }

  static wl_resource* make(wl_client* client, const wl_interface& interface, std::uint32_t version, std::uint32_t id,
                           const void* implementation, void* data, wl_resource_destroy_func_t destroyed = nullptr) {
    wl_resource* const resource = wl_resource_create(client, &interface, static_cast<int>(version), id);
    wl_resource_set_implementation(resource, implementation, data, destroyed);
    return resource;
  }
  static FakeCompositor& from(wl_resource* resource) {
    return *static_cast<FakeCompositor*>(wl_resource_get_user_data(resource));
  }

  void watch(wl_client* client, const wl_interface& interface, std::uint32_t id, std::uint32_t pause, bool deaf) {
    watchedPause = pause;
    deafToInhibitors = deaf;
    watchers_.push_back(make(client, interface, 1, id, nullptr, this,
                             [](wl_resource* resource) { from(resource).watchers_.remove(resource); }));
  }

  void announceIdle() {
    static constexpr struct ext_idle_notifier_v1_interface kRequests = {
        [](wl_client*, wl_resource*) {},
        [](wl_client* client, wl_resource* self, std::uint32_t id, std::uint32_t pause, wl_resource*) {
          from(self).watch(client, ext_idle_notification_v1_interface, id, pause, false);
        },
        [](wl_client* client, wl_resource* self, std::uint32_t id, std::uint32_t pause, wl_resource*) {
          from(self).watch(client, ext_idle_notification_v1_interface, id, pause, true);
        }};
    wl_global_create(display(), &ext_idle_notifier_v1_interface, idle_ == Idle::extVersion2 ? 2 : 1, this,
                     [](wl_client* client, void* self, auto version, auto id) {
                       make(client, ext_idle_notifier_v1_interface, version, id, &kRequests, self);
                     });
  }

  void announceKwinIdle() {
    static constexpr struct org_kde_kwin_idle_interface kRequests = {
        [](wl_client* client, wl_resource* self, std::uint32_t id, wl_resource*, std::uint32_t pause) {
          from(self).watch(client, org_kde_kwin_idle_timeout_interface, id, pause, false);
        }};
    wl_global_create(display(), &org_kde_kwin_idle_interface, 1, this,
                     [](wl_client* client, void* self, auto, auto id) {
                       make(client, org_kde_kwin_idle_interface, 1, id, &kRequests, self);
                     });
  }

  // Both kinds have the same two events.
  void tellInput(bool active) {
    for (wl_resource* watcher : watchers_) {
      wl_resource_post_event(watcher, active ? EXT_IDLE_NOTIFICATION_V1_RESUMED : EXT_IDLE_NOTIFICATION_V1_IDLED);
    }
    wl_display_flush_clients(display());
  }

  void announcePower() {
    static constexpr struct zwlr_output_power_manager_v1_interface kRequests = {
        [](wl_client* client, wl_resource* self, std::uint32_t id, wl_resource* output) {
          from(self).control(client, id, *static_cast<Output*>(wl_resource_get_user_data(output)));
        },
        [](wl_client*, wl_resource*) {}};
    wl_global_create(display(), &zwlr_output_power_manager_v1_interface, 1, this,
                     [](wl_client* client, void* self, auto, auto id) {
                       make(client, zwlr_output_power_manager_v1_interface, 1, id, &kRequests, self);
                     });
  }

  void control(wl_client* client, std::uint32_t id, Output& output) {
    static constexpr struct zwlr_output_power_v1_interface kRequests = {
        [](wl_client*, wl_resource* power, std::uint32_t mode) { of(power).set(power, mode); },
        [](wl_client*, wl_resource*) {}};
    output.powers.push_back(make(client, zwlr_output_power_v1_interface, 1, id, &kRequests, &output,
                                 [](wl_resource* power) { of(power).powers.remove(power); }));
  }
  static Output& of(wl_resource* power) { return *static_cast<Output*>(wl_resource_get_user_data(power)); }

  const Idle idle_;
  const Power power_;
  TemporaryTree folder_;
  std::unique_ptr<wl_display, End> display_{wl_display_create()};
  std::list<Output> outputs_;
  std::list<Output> unplugged_;
  std::list<wl_resource*> watchers_;
  Subscription events_;
};

}  // namespace nimbo
