// SPDX-License-Identifier: MIT
#include "darwin/fakes/fake_smc.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

using namespace nimbo::fake;

namespace {

Smc* theSmc = nullptr;

constexpr io_service_t kService = 0x901;
constexpr io_connect_t kConnection = 0xA03;
constexpr kern_return_t kBadArgument = static_cast<kern_return_t>(0xE00002C2);

}  // namespace

namespace nimbo::fake {

Smc::Smc() { EXPECT_EQ(std::exchange(theSmc, this), nullptr); }
Smc::~Smc() {
  EXPECT_EQ(connection, nullptr) << "left open";
  theSmc = nullptr;
}

}  // namespace nimbo::fake

extern "C" {

extern const mach_port_t kIOMainPortDefault = 0;

CFMutableDictionaryRef IOServiceMatching(const char* name) {
  if (!theSmc->canBeSought) return nullptr;
  const CFMutableDictionaryRef matching =
      CFDictionaryCreateMutable(nullptr, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks);
  CFDictionarySetValue(matching, text("IOProviderClass").get(), text(name).get());
  return matching;
}
io_service_t IOServiceGetMatchingService(mach_port_t mainPort, CFDictionaryRef matching) {
  EXPECT_EQ(mainPort, kIOMainPortDefault);
  const Held taken = owned(matching);
  const std::string name = utf8(CFDictionaryGetValue(matching, text("IOProviderClass").get()));
  if (name != "AppleSMC" || !theSmc->controller.present) return IO_OBJECT_NULL;
  ++references;
  return kService;
}
kern_return_t IOServiceOpen(io_service_t service, mach_port_t owningTask, uint32_t type, io_connect_t* connect) {
  EXPECT_EQ(service, kService);
  EXPECT_EQ(owningTask, mach_task_self());
  EXPECT_EQ(type, 0U);
  if (theSmc->refusal != 0) return theSmc->refusal;
  theSmc->connection = theSmc->controller.open();
  *connect = kConnection;
  return KERN_SUCCESS;
}
kern_return_t IOServiceClose(io_connect_t connect) {
  EXPECT_EQ(connect, kConnection);
  theSmc->connection.reset();
  return KERN_SUCCESS;
}
kern_return_t IOObjectRelease(io_object_t object) {
  EXPECT_EQ(object, kService);
  --references;
  return KERN_SUCCESS;
}
kern_return_t IOConnectCallStructMethod(mach_port_t connection, uint32_t selector, const void* input, size_t inputSize,
                                        void* output, size_t* outputSize) {
  nimbo::SmcRecord record{};
  if (connection != kConnection || selector != 2 || inputSize != record.size() || *outputSize != record.size()) {
    return kBadArgument;
  }
  std::copy_n(static_cast<const std::uint8_t*>(input), record.size(), record.begin());
  const auto reply = theSmc->connection->call(record);
  if (reply.returnCode != KERN_SUCCESS) return reply.returnCode;
  *outputSize = reply.size;
  std::copy_n(reply.record.begin(), reply.size, static_cast<std::uint8_t*>(output));
  return KERN_SUCCESS;
}

}  // extern "C"
