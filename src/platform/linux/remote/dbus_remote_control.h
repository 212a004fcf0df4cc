// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "platform/linux/bus/bus_name_watch.h"
#include "platform/linux/bus/sd_bus_calls.h"
#include "platform/linux/remote/dbus_figures.h"
#include "remote_control/remote_control.h"

namespace nimbo {

/// com.quellwerk.Nimbo.Awake1 on the session bus, and the figures beside it, as docs/bus.md describes them. Main thread
/// only.
class DbusRemoteControl final : public RemoteControl {
 public:
  /// `session` outlives this object; null for none.
  explicit DbusRemoteControl(sd_bus* session) : session_(session) {}

  void offer(RemoteControlHandlers handlers) override;
  void awakeChanged() override;
  void usageChanged() override {
    if (figures_) figures_->usageChanged();
  }
  void readingsChanged() override {
    if (figures_) figures_->readingsChanged();
  }

 private:
  static const sd_bus_vtable kTable[];
  struct Holder {
    std::string owner;
    std::unique_ptr<BusNameWatch> watch;
  };

  int start(sd_bus_message* call, sd_bus_error* error);
  int stop(sd_bus_message* call, sd_bus_error* error);
  int extend(sd_bus_message* call, sd_bus_error* error);
  int hold(sd_bus_message* call, sd_bus_error* error);
  int release(sd_bus_message* call, sd_bus_error* error);

  [[nodiscard]] bool active() const { return told_.active; }
  [[nodiscard]] bool own() const { return told_.own; }
  [[nodiscard]] std::int64_t endsAt() const;
  [[nodiscard]] bool keepsDisplayOn() const { return told_.keepsDisplayOn; }
  [[nodiscard]] const std::string& message() const { return told_.message; }
  [[nodiscard]] const std::vector<std::string>& names() const { return told_.holders; }

  void letGo(std::uint32_t holder);

  sd_bus* const session_;
  RemoteControlHandlers handlers_;
  AwakeStatus told_;
  std::map<std::uint32_t, Holder> holders_;
  BusSlot object_;
  std::optional<DbusFigures> figures_;
};

}  // namespace nimbo
