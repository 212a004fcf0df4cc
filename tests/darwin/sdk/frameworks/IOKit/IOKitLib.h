// SPDX-License-Identifier: MIT
// Declarations of what is used of IOKit's services, after its public documentation.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <mach/mach.h>

extern "C" {

typedef mach_port_t io_object_t;
typedef io_object_t io_service_t;
typedef io_object_t io_connect_t;
#define IO_OBJECT_NULL ((io_object_t)0)
extern const mach_port_t kIOMainPortDefault;

CFMutableDictionaryRef IOServiceMatching(const char* name);
/// Takes over the reference to `matching`.
io_service_t IOServiceGetMatchingService(mach_port_t mainPort, CFDictionaryRef matching);
kern_return_t IOServiceOpen(io_service_t service, mach_port_t owningTask, uint32_t type, io_connect_t* connect);
kern_return_t IOServiceClose(io_connect_t connect);
kern_return_t IOObjectRelease(io_object_t object);
kern_return_t IOConnectCallStructMethod(mach_port_t connection, uint32_t selector, const void* input, size_t inputSize,
                                        void* output, size_t* outputSize);

}  // extern "C"
