// SPDX-License-Identifier: MIT
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>

#include "base/bounded_json.h"
#include "fuzz/fuzz_input.h"
#include "settings/settings.h"
#include "support/turning_user_defaults.h"

using namespace nimbo;
namespace fs = std::filesystem;

namespace {

constexpr char kDomain[] = "com.quellwerk.Nimbo";

/// In memory, where syncing costs nothing; gone at the end.
struct Folder {
  const fs::path path = "/dev/shm/nimbo-settings-fuzz-" + std::to_string(::getpid());
  const fs::path file = path / (std::string(kDomain) + ".json");
  ~Folder() { fs::remove_all(path); }
};

template <class Values, class Value>
void requireOneOf(const Values& values, Value value) {
  require(std::ranges::find(values, value) != values.end());
}

}  // namespace

// Whatever somebody has made of the file: each setting reads as one that can be, and a change keeps all else that
// was in it, or the whole text beside it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Folder folder;
  const std::string text(textOf(data, size));
  fs::remove_all(folder.path);
  fs::create_directories(folder.path);
  std::ofstream(folder.file) << text;

  TurningUserDefaults defaults(folder.path, kDomain);
  Settings settings(defaults);
  requireOneOf(kRefreshIntervals, settings.refreshInterval().count());
  requireOneOf(kRotationIntervals, settings.menuRotationInterval().count());
  requireOneOf(kBatteryFloors, settings.awakeBatteryFloor());
  require(settings.monitorMemory() || settings.monitorCpu() || settings.monitorTemperature());
  require(std::ranges::is_permutation(settings.tabOrder(), kAllDashboardTabs));
  require(settings.menuPreset() >= 0 && settings.menuPreset() <= 4);
  require(settings.providerOrder().size() == kAllUsageProviders.size());
  (void)settings.awakeDuration();
  (void)settings.awakeCustomMinutes();
  (void)settings.lastDashboardTab();

  settings.setShowChart(!settings.showChart());
  std::ifstream stream(folder.file);
  const auto now = parseBoundedJson(std::string(std::istreambuf_iterator(stream), {}));
  require(now && now->is_object());
  const auto before = parseBoundedJson(text);
  if (before && before->is_object()) {
    for (const auto& [key, value] : before->items()) require(now->contains(key));
  } else {
    const auto files = std::distance(fs::directory_iterator(folder.path), fs::directory_iterator());
    require(files == 2);
  }
  return 0;
}
