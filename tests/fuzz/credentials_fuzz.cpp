// SPDX-License-Identifier: MIT
#include "fuzz/fuzz_input.h"
#include "usage/codex/codex_credential_file.h"

using namespace nimbo;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const UsageTime now{std::chrono::seconds(1795262400)};
  for (const UsageProvider provider : kAllUsageProviders) {
    const auto credentials = decodeCredentials(Secret(textOf(data, size)), provider, now);
    require(credentials ? !credentials->token.view().empty() : !credentials.error().message.empty());
  }
  return 0;
}
