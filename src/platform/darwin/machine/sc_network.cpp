// SPDX-License-Identifier: MIT
#include "platform/darwin/machine/sc_network.h"

#include <SystemConfiguration/SystemConfiguration.h>

#include <memory>
#include <utility>

#include "platform/darwin/core/cf_object.h"
#include "platform/darwin/loop/cf_main_loop.h"
#include "platform/posix/loop/settling.h"

namespace nimbo {
namespace {

/// Of one observer.
class RouteStore {
 public:
  RouteStore(MainLoop& timers, std::function<void()> connected) : settling_(timers, std::move(connected)) {
    SCDynamicStoreContext context{};
    context.info = this;
    const auto name = makeCfString("Nimbo");
    store_.reset(SCDynamicStoreCreate(kCFAllocatorDefault, name.get(), onChange, &context));
    if (!store_) return;
    // These keys are there as long as a default route of that family is.
    const CfObject<CFMutableArrayRef> keys(CFArrayCreateMutable(kCFAllocatorDefault, 0, &kCFTypeArrayCallBacks));
    for (const char* const family : {"IPv4", "IPv6"}) {
      const auto key = makeCfString(std::string("State:/Network/Global/") + family);
      CFArrayAppendValue(keys.get(), key.get());
    }
    if (!SCDynamicStoreSetNotificationKeys(store_.get(), keys.get(), nullptr)) return;
    source_.reset(SCDynamicStoreCreateRunLoopSource(kCFAllocatorDefault, store_.get(), 0));
    if (source_) CFRunLoopAddSource(CFRunLoopGetMain(), source_.get(), kCFRunLoopCommonModes);
  }

 private:
  static void onChange(SCDynamicStoreRef store, CFArrayRef changed, void* self) {
    for (CFIndex index = 0; index < CFArrayGetCount(changed); ++index) {
      const CfObject<CFPropertyListRef> route(
          SCDynamicStoreCopyValue(store, static_cast<CFStringRef>(CFArrayGetValueAtIndex(changed, index))));
      if (route) static_cast<RouteStore*>(self)->settling_.sign();
    }
  }

  CfObject<SCDynamicStoreRef> store_;
  RunLoopSource source_;
  Settling settling_;
};

}  // namespace

Subscription ScNetwork::observe(std::function<void()> connected) {
  return Subscription(
      [store = std::make_shared<RouteStore>(timers_, std::move(connected))]() mutable { store.reset(); });
}

}  // namespace nimbo
