// SPDX-License-Identifier: MIT
#include "app/usage_readers.h"

#include "usage/claude/claude_desktop_usage.h"
#include "usage/codex/codex_credential_file.h"

namespace nimbo {
namespace {

UsageCredentialReader::Reader signInReader(const UsageServices& services, const Clock& clock) {
  return codexCredentialReader(codexCredentialFile(services.user.codexHome, services.user.home), services.secretFiles,
                               clock);
}

ClaudeUsageReader claudeReader(PlatformServices& platform, const UsageServices& services) {
  const auto& user = services.user;
  const ClaudeDesktopUsage desktop(services.accessibility, *platform.readers().clock);
  return {
      {{services.terminals, services.toolFiles, *platform.readers().clock}, services.claudeQueue, platform.mainLoop()},
      {user.home, user.caches, user.searchPath, user.environment, user.localZone},
      [desktop, zone = user.localZone](const std::stop_token& stop) { return desktop.read(zone(), stop); }};
}

}  // namespace

UsageReaders::UsageReaders(PlatformServices& platform)
    : credentials_(platform.mainLoop(), platform.usageServices().background),
      codex_({credentials_, signInReader(platform.usageServices(), *platform.readers().clock),
              platform.usageServices().http, *platform.readers().clock, platform.dates()}),
      claude_(claudeReader(platform, platform.usageServices())) {}

UsageMonitor::Reads UsageReaders::reads() {
  return {[this](UsageRequest request, std::function<void(UsageOutcome)> done) {
            return codex_.read(request, std::move(done));
          },
          claude_};
}

}  // namespace nimbo
