// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <vector>

#include "platform/platform_services.h"
#include "settings/settings.h"
#include "usage/codex/codex_usage_client.h"
#include "usage/codex/usage_credential_reader.h"
#include "usage/usage_monitor.h"

namespace nimbo {

/// The AI providers on this system: how each is read, and which the settings switch on. Main thread only.
class UsageProviders {
 public:
  /// `platform` and `settings` outlive it. `changed` is called after every change of a state.
  UsageProviders(PlatformServices& platform, const Settings& settings, std::function<void()> changed);

  [[nodiscard]] const UsageStates& states() const { return monitor_.states(); }
  /// Whether any provider is being read.
  [[nodiscard]] bool isRefreshing() const;

  /// Reads what is due. A provider that was switched by hand in the settings file is found here, too.
  void refreshDue();
  /// Reads whatever may be read, because the user asks.
  void refreshAll() { monitor_.refresh(kAllUsageProviders, UsageRequest::manual); }
  /// The user has switched a provider: one that was switched on is read as if asked for.
  void settingsChanged();
  void stop() { monitor_.stop(); }

 private:
  /// Those that were off before and are on now.
  [[nodiscard]] std::vector<UsageProvider> applySettings();

  const Settings& settings_;
  UsageCredentialReader credentials_;
  CodexUsageClient codex_;
  UsageMonitor monitor_;
};

}  // namespace nimbo
