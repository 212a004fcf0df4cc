// SPDX-License-Identifier: MIT
#include "platform/linux/power/power_error_code.h"

#include <cerrno>

namespace nimbo {

// What libsystemd makes of the names that the bus and its libraries give their errors.
std::int32_t powerErrorCode(sd_bus_message* reply) {
  switch (const int error = sd_bus_message_get_errno(reply)) {
    case EHOSTUNREACH:  // ServiceUnknown
    case ENXIO:         // NameHasNoOwner
    case EBADR:         // UnknownObject, UnknownInterface, UnknownMethod
      return ENOTSUP;
    default:
      return error;
  }
}

}  // namespace nimbo
