// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "platform/application_instance.h"
#include "platform/linux/bus/sd_bus_connection.h"

namespace nimbo {

/// One instance per session through a bus name; later starts reach the first as
/// org.freedesktop.Application. Main thread only.
class DbusApplicationInstance final : public ApplicationInstance {
 public:
  /// `session` outlives this object. `limit` is for all answers together.
  explicit DbusApplicationInstance(SdBusConnection& session, std::chrono::milliseconds limit = std::chrono::seconds(5))
      : session_(session), limit_(limit) {}

  [[nodiscard]] Result<InstanceRole, InstanceError> claim(const std::vector<std::string>& links,
                                                          ApplicationInstanceHandlers handlers) override;
  void release() override;

 private:
  static const sd_bus_vtable kTable[];

  /// Negative error code, or what the bus says of the request.
  [[nodiscard]] int requestName(Deadline deadline);
  [[nodiscard]] int forward(const std::vector<std::string>& links, Deadline deadline);

  int activate(sd_bus_message* call, sd_bus_error* error);
  int open(sd_bus_message* call, sd_bus_error* error);
  int activateAction(sd_bus_message* call, sd_bus_error* error);

  SdBusConnection& session_;
  const std::chrono::milliseconds limit_;
  ApplicationInstanceHandlers handlers_;
  BusSlot object_;
};

}  // namespace nimbo
