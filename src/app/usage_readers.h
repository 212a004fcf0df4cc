// SPDX-License-Identifier: MIT
#pragma once

#include "platform/platform_services.h"
#include "usage/claude_usage_reader.h"
#include "usage/codex_usage_client.h"
#include "usage/usage_credential_reader.h"
#include "usage/usage_monitor.h"

namespace nimbo {

/// How each provider is read on this system. Outlives the monitor that reads. Main thread only.
class UsageReaders {
 public:
  /// `platform` outlives it.
  explicit UsageReaders(PlatformServices& platform);

  [[nodiscard]] UsageMonitor::Reads reads();

 private:
  UsageCredentialReader credentials_;
  CodexUsageClient codex_;
  ClaudeUsageReader claude_;
};

/// Where a user sees the provider's own account of the limits.
[[nodiscard]] const char* usagePage(UsageProvider provider);

}  // namespace nimbo
