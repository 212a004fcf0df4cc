// SPDX-License-Identifier: MIT
#include "app/system_requests.h"

#include <utility>

namespace nimbo {

void SystemRequests::toggleLogin() {
  auto& login = platform_.loginItem();
  const auto status = login.status();
  if (status == LoginItemStatus::requiresApproval) return login.openSystemSettings();
  const auto done = status == LoginItemStatus::enabled ? login.unregisterItem() : login.registerItem();
  if (done) return;
  tell("Couldn’t update launch at login", platform_.wording().loginAdvice + done.error().description);
}

// Applications learn when they start that somebody wants to read their windows, so that comes first.
void SystemRequests::openClaudeDesktop() {
  if (std::exchange(openingClaudeDesktop_, true)) return;
  auto open = lifetime_.guard([this] {
    openingClaudeDesktop_ = false;
    if (platform_.workspace().openApplication("com.anthropic.claudefordesktop")) return;
    tell("Claude Desktop couldn’t be opened", "Open it yourself, then leave its Settings → Usage page open.");
  });
  auto& accessibility = platform_.usageServices().accessibility;
  platform_.utilityQueue().async([&accessibility, &loop = platform_.mainLoop(), open] {
    accessibility.requestTrust();
    loop.post(open);
  });
}

void SystemRequests::tell(const std::string& title, const std::string& text) {
  notice_.ask({title, text, {"OK"}}, [](std::optional<std::size_t> /*button*/) {});
}

}  // namespace nimbo
