// SPDX-License-Identifier: MIT
// Declarations of what is used of IOKit's power sources, after its public documentation.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

extern "C" {

typedef void (*IOPowerSourceCallbackType)(void* context);

CFTypeRef IOPSCopyPowerSourcesInfo(void);
CFArrayRef IOPSCopyPowerSourcesList(CFTypeRef info);
/// Belongs to `info`.
CFDictionaryRef IOPSGetPowerSourceDescription(CFTypeRef info, CFTypeRef source);
CFRunLoopSourceRef IOPSNotificationCreateRunLoopSource(IOPowerSourceCallbackType callback, void* context);

}  // extern "C"
