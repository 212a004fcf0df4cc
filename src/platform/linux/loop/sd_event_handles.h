// SPDX-License-Identifier: MIT
#pragma once

#include <systemd/sd-event.h>

#include "base/unique_handle.h"

namespace nimbo {

struct SdEventTraits {
  using Handle = sd_event*;
  static Handle invalid() { return nullptr; }
  static void release(Handle event) { sd_event_unref(event); }
};

/// Releasing a source also stops it, although a handler that runs right now may still hold it.
struct SdEventSourceTraits {
  using Handle = sd_event_source*;
  static Handle invalid() { return nullptr; }
  static void release(Handle source) { sd_event_source_disable_unref(source); }
};

}  // namespace nimbo
