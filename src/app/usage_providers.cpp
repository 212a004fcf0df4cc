// SPDX-License-Identifier: MIT
#include "app/usage_providers.h"

#include <algorithm>
#include <utility>

#include "usage/claude/claude_desktop_usage.h"
#include "usage/claude/claude_usage_reader.h"
#include "usage/codex/codex_credential_file.h"

namespace nimbo {
namespace {

CodexUsageClient codexClient(PlatformServices& platform, UsageCredentialReader& credentials) {
  const auto services = platform.usageServices();
  const auto& clock = *platform.readers().clock;
  const auto file = codexCredentialFile(services.user.codexHome, services.user.home);
  return CodexUsageClient(
      {credentials, codexCredentialReader(file, services.secretFiles, clock), services.http, clock, platform.dates()});
}

ClaudeUsageReader claudeReader(PlatformServices& platform) {
  const auto services = platform.usageServices();
  const auto& clock = *platform.readers().clock;
  const auto& user = services.user;
  const ClaudeDesktopUsage desktop(services.accessibility, clock, platform.wording());
  return {{{services.terminals, services.toolFiles, clock}, services.claudeQueue, platform.mainLoop()},
          {user.home, user.caches, user.searchPath, user.environment, user.localZone},
          [desktop, zone = user.localZone](const std::stop_token& stop) { return desktop.read(zone(), stop); }};
}

}  // namespace

UsageProviders::UsageProviders(PlatformServices& platform, const Settings& settings, std::function<void()> changed)
    : settings_(settings),
      credentials_(platform.mainLoop(), platform.usageServices().background, platform.wording()),
      codex_(codexClient(platform, credentials_)),
      monitor_(
          {.codex = [this](UsageRequest request,
                           std::function<void(UsageOutcome)> done) { return codex_.read(request, std::move(done)); },
           .claude = claudeReader(platform)},
          *platform.readers().clock, platform.dates(), platform.usageServices().network) {
  monitor_.onChange = std::move(changed);
}

bool UsageProviders::isRefreshing() const {
  return std::ranges::any_of(states(), [](const auto& state) { return state.second.isRefreshing; });
}

void UsageProviders::refreshDue() {
  (void)applySettings();
  monitor_.refresh(kAllUsageProviders, UsageRequest::automatic);
}

void UsageProviders::settingsChanged() {
  monitor_.refresh(applySettings(), UsageRequest::manual);
  monitor_.refresh(kAllUsageProviders, UsageRequest::automatic);
}

std::vector<UsageProvider> UsageProviders::applySettings() {
  std::vector<UsageProvider> added;
  for (const auto provider : kAllUsageProviders) {
    const bool enabled = settings_.usageEnabled(provider);
    const auto state = states().find(provider);
    if (enabled && (state == states().end() || !state->second.enabled)) added.push_back(provider);
    monitor_.setEnabled(provider, enabled);
  }
  return added;
}

}  // namespace nimbo
