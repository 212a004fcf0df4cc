// SPDX-License-Identifier: MIT
#include "darwin/fakes/fake_power.h"

#include <gtest/gtest.h>

#include <utility>

using namespace nimbo::fake;

namespace {

Power* thePower = nullptr;

constexpr IOReturn kNotFound = static_cast<IOReturn>(0xE00002F0);

}  // namespace

namespace nimbo::fake {

Power::Power() { EXPECT_EQ(std::exchange(thePower, this), nullptr); }
Power::~Power() { thePower = nullptr; }

void Power::notify() const {
  for (const auto& notification : notifications) {
    CFRunLoopSourceSignal(static_cast<CFRunLoopSourceRef>(const_cast<void*>(notification->source.get())));
  }
  CFRunLoopWakeUp(CFRunLoopGetMain());
}

}  // namespace nimbo::fake

extern "C" {

IOReturn IOPMAssertionCreateWithName(CFStringRef type, IOPMAssertionLevel level, CFStringRef name,
                                     IOPMAssertionID* assertion) {
  EXPECT_EQ(level, kIOPMAssertionLevelOn);
  if (thePower->refusal != 0) return thePower->refusal;
  *assertion = ++thePower->lastAssertion;
  thePower->assertions[*assertion] = {utf8(type), utf8(name)};
  return 0;
}
IOReturn IOPMAssertionRelease(IOPMAssertionID assertion) {
  return thePower->assertions.erase(assertion) > 0 ? 0 : kNotFound;
}

CFTypeRef IOPSCopyPowerSourcesInfo() {
  return thePower->tellsInfo ? CFRetain(array(thePower->sources).get()) : nullptr;
}
CFArrayRef IOPSCopyPowerSourcesList(CFTypeRef info) {
  if (!thePower->tellsList) return nullptr;
  return static_cast<CFArrayRef>(CFRetain(thePower->listIsArray ? info : text("none").get()));
}
CFDictionaryRef IOPSGetPowerSourceDescription(CFTypeRef /*info*/, CFTypeRef source) {
  return CFGetTypeID(source) == kDictionary ? static_cast<CFDictionaryRef>(source) : nullptr;
}
CFRunLoopSourceRef IOPSNotificationCreateRunLoopSource(IOPowerSourceCallbackType callback, void* context) {
  if (!thePower->notifies) return nullptr;
  thePower->notifications.push_back(
      std::make_unique<Power::Notification>(Power::Notification{callback, context, Held()}));
  CFRunLoopSourceContext performed{};
  performed.info = thePower->notifications.back().get();
  performed.perform = [](void* info) {
    const auto* const notification = static_cast<const Power::Notification*>(info);
    notification->callback(notification->context);
  };
  const CFRunLoopSourceRef source = CFRunLoopSourceCreate(nullptr, 0, &performed);
  thePower->notifications.back()->source = Held(source);
  return source;
}

}  // extern "C"
