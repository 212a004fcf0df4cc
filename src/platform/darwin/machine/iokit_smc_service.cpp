// SPDX-License-Identifier: MIT
#include "platform/darwin/machine/iokit_smc_service.h"

#include <IOKit/IOKitLib.h>
#include <sys/sysctl.h>

#include <utility>

#include "base/unique_handle.h"

namespace nimbo {
namespace {

template <auto kRelease>
struct IokitTraits {
  using Handle = io_object_t;
  static Handle invalid() { return IO_OBJECT_NULL; }
  static void release(Handle object) { kRelease(object); }
};
using Service = UniqueHandle<IokitTraits<IOObjectRelease>>;
using Connection = UniqueHandle<IokitTraits<IOServiceClose>>;

class IokitSmcConnection final : public SmcConnection {
 public:
  explicit IokitSmcConnection(Connection connection) : connection_(std::move(connection)) {}

  [[nodiscard]] SmcReply call(const SmcRecord& request) override {
    constexpr std::uint32_t kHandleRecord = 2;
    SmcReply reply;
    reply.size = reply.record.size();
    reply.returnCode = IOConnectCallStructMethod(connection_.get(), kHandleRecord, request.data(), request.size(),
                                                 reply.record.data(), &reply.size);
    return reply;
  }

 private:
  const Connection connection_;
};

}  // namespace

std::unique_ptr<SmcConnection> IokitSmcService::open() {
  auto* const matching = IOServiceMatching("AppleSMC");
  if (matching == nullptr) return nullptr;
  const Service service(IOServiceGetMatchingService(kIOMainPortDefault, matching));  // which lets go of `matching`
  Connection connection;
  if (!service || IOServiceOpen(service.get(), mach_task_self(), 0, connection.out()) != KERN_SUCCESS) return nullptr;
  return std::make_unique<IokitSmcConnection>(std::move(connection));
}

std::string IokitSmcService::cpuBrand() {
  constexpr const char* kName = "machdep.cpu.brand_string";
  std::size_t size = 0;
  if (::sysctlbyname(kName, nullptr, &size, nullptr, 0) != 0) return {};
  std::string brand(size, '\0');
  if (::sysctlbyname(kName, brand.data(), &size, nullptr, 0) != 0) return {};
  return brand.substr(0, brand.find('\0'));
}

}  // namespace nimbo
