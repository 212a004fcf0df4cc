// SPDX-License-Identifier: MIT
// What a description of a power source says, after the public documentation.
#pragma once

#define kIOPSTypeKey "Type"
#define kIOPSPowerSourceStateKey "Power Source State"
#define kIOPSCurrentCapacityKey "Current Capacity"
#define kIOPSMaxCapacityKey "Max Capacity"
