// SPDX-License-Identifier: MIT
#include "platform/linux/power/logind_lock.h"

#include <fcntl.h>

#include <cerrno>
#include <optional>
#include <utility>

#include "platform/linux/bus/sd_bus_calls.h"
#include "platform/linux/power/power_error_code.h"

namespace nimbo {
namespace {

using Lock = Result<UniqueFd, PowerError>;

Lock failure(std::int32_t code) { return tl::unexpected(PowerError{code}); }

// The message closes its own descriptor.
Lock lockFrom(sd_bus_message* reply) {
  if (isError(reply)) return failure(powerErrorCode(reply));
  int descriptor = -1;
  if (sd_bus_message_read(reply, "h", &descriptor) <= 0) return failure(EBADMSG);
  UniqueFd copy(::fcntl(descriptor, F_DUPFD_CLOEXEC, 3));
  if (!copy) return failure(errno);
  return copy;
}

}  // namespace

Result<UniqueFd, PowerError> takeLogindLock(const std::string& systemAddress, const char* what,
                                            const std::string& reason, Deadline deadline) {
  const BoundedBus bus(systemAddress);
  constexpr BusMethod kInhibit{"org.freedesktop.login1", "/org/freedesktop/login1", "org.freedesktop.login1.Manager",
                               "Inhibit"};
  const BusMessage call = methodCall(bus.get(), kInhibit, what, "Nimbo", reason, "block");
  if (!call) return failure(ENOTSUP);
  std::optional<Lock> lock;
  const BusSlot pending = callAsync(call, [&lock](sd_bus_message* reply) { lock = lockFrom(reply); });
  if (!bus.turnUntil(deadline, [&lock] { return lock.has_value(); })) return failure(ETIMEDOUT);
  return std::move(*lock);
}

}  // namespace nimbo
