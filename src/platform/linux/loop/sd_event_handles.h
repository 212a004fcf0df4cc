// SPDX-License-Identifier: MIT
#pragma once

#include <systemd/sd-event.h>

#include "base/unique_handle.h"

namespace nimbo {

using Event = UniquePointer<sd_event, sd_event_unref>;

/// Releasing a source also stops it, although a handler that runs right now may still hold it.
using EventSource = UniquePointer<sd_event_source, sd_event_source_disable_unref>;

}  // namespace nimbo
