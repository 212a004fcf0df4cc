// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "settings/settings.h"
#include "support/fake_user_defaults.h"

namespace nimbo {

inline constexpr char kDomain[] = "test.domain";
inline constexpr DashboardTab kAi = DashboardTab::ai;
inline constexpr DashboardTab kMemory = DashboardTab::memory;
inline constexpr DashboardTab kAwake = DashboardTab::awake;
using Tabs = std::vector<DashboardTab>;
using Providers = std::vector<UsageProvider>;

/// A domain in memory to make settings over.
class SettingsTest : public ::testing::Test {
 protected:
  void store(const char* key, nlohmann::json value) { domains.domains[kDomain][key] = std::move(value); }
  [[nodiscard]] nlohmann::json stored(const char* key) const {
    const auto found = domains.domains.find(kDomain);
    return found != domains.domains.end() && found->second.contains(key) ? found->second.at(key)
                                                                         : nlohmann::json("(absent)");
  }

  FakeUserDefaultsDomains domains;
  FakeUserDefaults defaults{domains, kDomain};
};

}  // namespace nimbo
