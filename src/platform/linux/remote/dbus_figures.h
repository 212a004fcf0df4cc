// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "platform/linux/bus/bus_name_watch.h"
#include "platform/linux/bus/sd_bus_calls.h"
#include "remote_control/remote_control.h"

namespace nimbo {

/// com.quellwerk.Nimbo.Usage1 and .Resources1 on the session bus, as docs/bus.md describes them. Main thread only.
class DbusFigures {
 public:
  /// `session` and `handlers` outlive it; `session` may be null.
  DbusFigures(sd_bus* session, const RemoteControlHandlers& handlers);

  void usageChanged();
  /// Costs nothing while nobody wants to know.
  void readingsChanged();

 private:
  static const sd_bus_vtable kUsageTable[];
  static const sd_bus_vtable kResourcesTable[];

  struct Watcher {
    std::set<std::string> names;  ///< of the properties that it wants to be told
    std::unique_ptr<BusNameWatch> presence;
  };

  void codex(BusWriter& writer) const { writeUsage(writer, UsageProvider::codex); }
  void claude(BusWriter& writer) const { writeUsage(writer, UsageProvider::claude); }
  void writeUsage(BusWriter& writer, UsageProvider provider) const;
  int refresh(sd_bus_message* call, sd_bus_error* error);

  void memory(BusWriter& writer) const;
  [[nodiscard]] bool memoryFailed() const { return handlers_.readings().memoryFailed; }
  [[nodiscard]] double cpu() const { return handlers_.readings().cpu.value_or(-1); }
  [[nodiscard]] double temperature() const { return handlers_.readings().temperature.value_or(-1); }
  int watch(sd_bus_message* call, sd_bus_error* error);

  sd_bus* const session_;
  const RemoteControlHandlers& handlers_;
  UsageStates toldUsage_;
  SystemReadings toldReadings_;
  std::map<std::string, Watcher> watchers_;  // by their unique names
  BusSlot usageObject_;
  BusSlot resourcesObject_;
};

}  // namespace nimbo
