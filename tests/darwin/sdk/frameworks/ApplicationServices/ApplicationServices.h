// SPDX-License-Identifier: MIT
// Declarations of what is used of the accessibility interface, after its public documentation.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <sys/types.h>

extern "C" {

typedef const struct __AXUIElement* AXUIElementRef;
enum AXError : int32_t {
  kAXErrorSuccess = 0,
  kAXErrorFailure = -25200,
  kAXErrorInvalidUIElement = -25202,
  kAXErrorCannotComplete = -25204,
  kAXErrorAttributeUnsupported = -25205,
  kAXErrorAPIDisabled = -25211,
  kAXErrorNoValue = -25212,
};

extern const CFStringRef kAXTrustedCheckOptionPrompt;
Boolean AXIsProcessTrusted(void);
Boolean AXIsProcessTrustedWithOptions(CFDictionaryRef options);

CFTypeID AXUIElementGetTypeID(void);
AXUIElementRef AXUIElementCreateApplication(pid_t process);
/// Of this object alone, not of others for the same element; 0 is the default again.
AXError AXUIElementSetMessagingTimeout(AXUIElementRef element, float seconds);
AXError AXUIElementSetAttributeValue(AXUIElementRef element, CFStringRef attribute, CFTypeRef value);
AXError AXUIElementCopyAttributeValue(AXUIElementRef element, CFStringRef attribute, CFTypeRef* value);

}  // extern "C"
