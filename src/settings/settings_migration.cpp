// SPDX-License-Identifier: MIT
#include "settings/settings_migration.h"

#include <array>
#include <nlohmann/json.hpp>

#include "base/bounded_json.h"
#include "settings/setting_keys.h"

namespace nimbo {
namespace {

using namespace setting_keys;
using nlohmann::json;

// What the previous identity knew; newer keys start from their defaults.
constexpr std::array<const char*, 16> kMigratedKeys{
    kMonitorMemory,    kMonitorCpu,        kMonitorTemperature,    kCompactMenuBar,
    "usage.codex",     "usage.claude",     kDisplayMode,           kRefreshInterval,
    kShowChart,        kAwakeDuration,     kAwakeCustomMinutes,    kAwakeDisplayOn,
    kAwakeOnlyOnPower, kAwakeBatteryFloor, kEnableAutomaticChecks, kAutomaticallyUpdate};

bool isMigrated(const json& domain) {
  const auto mark = domain.find(kDidMigrateNimboIdentity);
  return mark != domain.end() && booleanValue(*mark) == true;
}

}  // namespace

void migratePreviousIdentity(UserDefaultsDomains& domains) {
  json current = domains.persistentDomain(kCurrentIdentity).value_or(json::object());
  if (isMigrated(current)) return;
  const json previous = domains.persistentDomain(kPreviousIdentity).value_or(json::object());
  for (const char* const key : kMigratedKeys) {
    if (const auto value = previous.find(key); value != previous.end() && !current.contains(key)) {
      current[key] = *value;
    }
  }
  current[kDidMigrateNimboIdentity] = true;
  // Without the mark on disk the next start simply tries again.
  (void)domains.setPersistentDomain(kCurrentIdentity, current);
}

}  // namespace nimbo
