// SPDX-License-Identifier: MIT
#include "platform/darwin/power/iokit_assertion_client.h"

#include <IOKit/pwr_mgt/IOPMLib.h>

#include "platform/darwin/core/cf_object.h"

namespace nimbo {

Result<std::uint32_t, PowerError> IokitAssertionClient::create(const std::string& type, const std::string& reason) {
  IOPMAssertionID id = 0;
  const IOReturn result =
      IOPMAssertionCreateWithName(makeCfString(type).get(), kIOPMAssertionLevelOn, makeCfString(reason).get(), &id);
  if (result != 0) return tl::unexpected(PowerError{result});
  return id;
}

void IokitAssertionClient::release(std::uint32_t id) { IOPMAssertionRelease(id); }

}  // namespace nimbo
