// SPDX-License-Identifier: MIT
#pragma once

#include <fcntl.h>
#include <poll.h>
#include <sys/epoll.h>
#include <unistd.h>

#include <array>
#include <string>
#include <vector>

#include "platform/posix/files/unique_fd.h"
#include "support/services/bus_peer.h"

namespace nimbo {

/// The login manager: hands out inhibitor locks and sees when they are let go.
class FakeLogind {
 public:
  struct Lock {
    std::string what;
    std::string who;
    std::string why;
    std::string mode;
    UniqueFd readEnd;
    EventSource letGo;  ///< wakes the loop when the last copy is closed

    [[nodiscard]] bool held() const {
      pollfd entry{readEnd.get(), POLLIN, 0};
      ::poll(&entry, 1, 0);
      return (entry.revents & POLLHUP) == 0;
    }
  };

  FakeLogind(BusLoop& loop, const std::string& address) : peer(loop, address) {
    sd_bus_slot* slot = nullptr;
    sd_bus_add_object_vtable(peer.bus(), &slot, kPath, kInterface, kTable, this);
    object_.reset(slot);
    peer.own("org.freedesktop.login1");
  }

  void prepareForSleep(bool sleeping) const {
    sd_bus_emit_signal(peer.bus(), kPath, kInterface, "PrepareForSleep", "b", sleeping ? 1 : 0);
  }

  [[nodiscard]] int held() const {
    int count = 0;
    for (const Lock& lock : locks) count += lock.held() ? 1 : 0;
    return count;
  }

  BusPeer peer;
  std::vector<Lock> locks;  ///< all that were ever given
  int asked = 0;            ///< how often for a lock
  bool refuses = false;

 private:
  static constexpr const char* kPath = "/org/freedesktop/login1";
  static constexpr const char* kInterface = "org.freedesktop.login1.Manager";

  static int onInhibit(sd_bus_message* call, void* self, sd_bus_error* error) {
    auto& fake = *static_cast<FakeLogind*>(self);
    ++fake.asked;
    if (fake.refuses) return sd_bus_error_set(error, "org.freedesktop.DBus.Error.AccessDenied", "no");
    const char* what = nullptr;
    const char* who = nullptr;
    const char* why = nullptr;
    const char* mode = nullptr;
    sd_bus_message_read(call, "ssss", &what, &who, &why, &mode);
    std::array<int, 2> pipe{};
    if (::pipe2(pipe.data(), O_CLOEXEC) != 0) return -errno;
    sd_event_source* letGo = nullptr;
    const auto wake = [](sd_event_source* source, int, std::uint32_t, void*) {
      return sd_event_source_set_enabled(source, SD_EVENT_OFF);
    };
    sd_event_add_io(fake.peer.loop().event(), &letGo, pipe[0], EPOLLIN, wake, nullptr);
    fake.locks.push_back({what, who, why, mode, UniqueFd(pipe[0]), EventSource(letGo)});
    const UniqueFd writeEnd(pipe[1]);
    return sd_bus_reply_method_return(call, "h", writeEnd.get());
  }

  static constexpr sd_bus_vtable kTable[] = {
      SD_BUS_VTABLE_START(0),
      SD_BUS_METHOD("Inhibit", "ssss", "h", onInhibit, SD_BUS_VTABLE_UNPRIVILEGED),
      SD_BUS_SIGNAL("PrepareForSleep", "b", 0),
      SD_BUS_VTABLE_END,
  };

  BusSlot object_;
};

}  // namespace nimbo
