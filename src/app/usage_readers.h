// SPDX-License-Identifier: MIT
#pragma once

#include "platform/platform_services.h"
#include "usage/claude/claude_usage_reader.h"
#include "usage/codex/codex_usage_client.h"
#include "usage/codex/usage_credential_reader.h"
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

}  // namespace nimbo
