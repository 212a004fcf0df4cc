// SPDX-License-Identifier: MIT
#pragma once

#include "ui/dashboard/dashboard_content.h"
#include "ui/dashboard/dashboard_sources.h"

namespace nimbo {

/// The AI page: one card for each provider with its limit windows.
[[nodiscard]] UsageContent usageContent(const DashboardSources& sources, bool visible);

}  // namespace nimbo
