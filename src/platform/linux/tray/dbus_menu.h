// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/linux/bus/bus_name_watch.h"
#include "platform/linux/bus/sd_bus_connection.h"
#include "platform/status_bar.h"

namespace nimbo {

/// A status item's menu as tray hosts read it: com.canonical.dbusmenu. Main thread only.
/// Hosts read layouts ahead and at odd times, and some never announce an opening, so every question
/// about the layout while the menu is closed asks for it anew.
class DbusMenu {
 public:
  static constexpr const char* kPath = "/MenuBar";

  DbusMenu(sd_bus* bus, StatusItemHandlers handlers);
  DbusMenu(const DbusMenu&) = delete;
  DbusMenu& operator=(const DbusMenu&) = delete;

 private:
  using Callbacks = std::vector<std::function<void()>>;
  static const sd_bus_vtable kTable[];

  int getLayout(sd_bus_message* call, sd_bus_error* error);
  int getGroupProperties(sd_bus_message* call, sd_bus_error* error);
  int getProperty(sd_bus_message* call, sd_bus_error* error);
  int event(sd_bus_message* call, sd_bus_error* error);
  int eventGroup(sd_bus_message* call, sd_bus_error* error);
  int aboutToShow(sd_bus_message* call, sd_bus_error* error);
  int aboutToShowGroup(sd_bus_message* call, sd_bus_error* error);

  [[nodiscard]] bool contains(std::int32_t id) const {
    return id >= 0 && std::cmp_less_equal(id, menu_.entries.size());
  }
  bool replace(StatusMenu menu);
  void tellProperties(const StatusMenu& before);
  bool replaceAndTell(StatusMenu menu);
  void refreshIfClosed() {
    if (!open_) replace(handlers_.menuPreview());
  }
  [[nodiscard]] bool prepareToShow() { return !open_ && replaceAndTell(handlers_.menuPreview()); }
  [[nodiscard]] bool readEvent(sd_bus_message* call, Callbacks& afterwards, std::int32_t& id);
  void opened(const char* sender);
  void closed(Callbacks& afterwards);

  sd_bus* const bus_;
  const StatusItemHandlers handlers_;
  StatusMenu menu_;
  std::uint32_t revision_ = 0;  // 0 while no layout was built
  bool open_ = false;
  std::optional<BusNameWatch> opener_;  // a host that vanishes cannot tell that its menu closed
  BusSlot object_;
};

}  // namespace nimbo
