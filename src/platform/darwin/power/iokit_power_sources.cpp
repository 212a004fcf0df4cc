// SPDX-License-Identifier: MIT
#include "platform/darwin/power/iokit_power_sources.h"

#include <IOKit/ps/IOPSKeys.h>
#include <IOKit/ps/IOPowerSources.h>

#include <memory>
#include <utility>

#include "platform/darwin/loop/cf_main_loop.h"

namespace nimbo {
namespace {

PowerSourceDescription descriptionOf(CFDictionaryRef source) {
  if (source == nullptr) return {};
  const auto value = [source](const char* key) { return CFDictionaryGetValue(source, makeCfString(key).get()); };
  return {textOf(value(kIOPSTypeKey)), textOf(value(kIOPSPowerSourceStateKey)),
          integerOf(value(kIOPSCurrentCapacityKey)), integerOf(value(kIOPSMaxCapacityKey))};
}

struct Observer {
  std::function<void()> changed;
  RunLoopSource source;
};

void onChange(void* observer) {
  const auto changed = static_cast<Observer*>(observer)->changed;  // the observer may go away while it is told
  changed();
}

}  // namespace

std::optional<std::vector<PowerSourceDescription>> IokitPowerSources::list() const {
  const CfObject<CFTypeRef> info(IOPSCopyPowerSourcesInfo());
  if (!info) return std::nullopt;
  const CfObject<CFArrayRef> sources(IOPSCopyPowerSourcesList(info.get()));
  if (!sources || CFGetTypeID(sources.get()) != CFArrayGetTypeID()) return std::nullopt;
  std::vector<PowerSourceDescription> descriptions;
  for (CFIndex index = 0; index < CFArrayGetCount(sources.get()); ++index) {
    const CFTypeRef source = CFArrayGetValueAtIndex(sources.get(), index);
    descriptions.push_back(descriptionOf(IOPSGetPowerSourceDescription(info.get(), source)));
  }
  return descriptions;
}

Subscription IokitPowerSources::observe(std::function<void()> changed) {
  auto observer = std::make_shared<Observer>();
  observer->changed = std::move(changed);
  observer->source.reset(IOPSNotificationCreateRunLoopSource(onChange, observer.get()));
  if (observer->source) CFRunLoopAddSource(CFRunLoopGetMain(), observer->source.get(), kCFRunLoopCommonModes);
  return Subscription([observer = std::move(observer)]() mutable { observer.reset(); });
}

}  // namespace nimbo
