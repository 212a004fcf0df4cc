// SPDX-License-Identifier: MIT
#include "platform/linux/power/sysfs_power_sources.h"

#include <systemd/sd-device.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <limits>
#include <memory>
#include <system_error>
#include <utility>

#include "platform/linux/machine/proc_file.h"
#include "platform/linux/power/power_supply.h"

namespace nimbo {
namespace {

constexpr const char* kSubsystem = "power_supply";

/// In the order of their names; none without the folder, absent when it cannot be listed.
std::optional<std::vector<std::filesystem::path>> entriesOf(const std::string& folder) {
  std::vector<std::filesystem::path> entries;
  std::error_code error;
  for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
    entries.push_back(entry->path());
  }
  if (error && error != std::errc::no_such_file_or_directory) return std::nullopt;
  std::sort(entries.begin(), entries.end());
  return entries;
}

std::optional<std::int64_t> readNumberOf(const std::string& attribute) {
  constexpr std::uint64_t kLargest = std::numeric_limits<std::int64_t>::max();
  const auto number = parseNumber(readAttributeLine(attribute));
  return number && *number <= kLargest ? std::optional(static_cast<std::int64_t>(*number)) : std::nullopt;
}

std::optional<PowerSupply::Charge> readPair(const std::string& nowAttribute, const std::string& fullAttribute) {
  const auto full = readNumberOf(fullAttribute);
  const auto now = full ? readNumberOf(nowAttribute) : std::nullopt;
  if (!now || *full <= 0) return std::nullopt;
  return {{*now, *full}};
}

/// What the desktop shows as the charge, else what stands behind it.
std::optional<PowerSupply::Charge> readCharge(const std::string& folder) {
  constexpr std::int64_t kWhole = 100;
  if (const auto percent = readNumberOf(folder + "/capacity"); percent && *percent <= kWhole)
    return {{*percent, kWhole}};
  const auto energy = readPair(folder + "/energy_now", folder + "/energy_full");
  return energy ? energy : readPair(folder + "/charge_now", folder + "/charge_full");
}

/// As told, or from a charge in µAh and a voltage in µV.
std::optional<PowerSupply::Charge> readEnergy(const std::string& folder) {
  if (const auto energy = readPair(folder + "/energy_now", folder + "/energy_full")) return energy;
  const auto charge = readPair(folder + "/charge_now", folder + "/charge_full");
  if (!charge) return std::nullopt;
  auto voltage = readNumberOf(folder + "/voltage_min_design");
  if (!voltage) voltage = readNumberOf(folder + "/voltage_now");
  if (!voltage || *voltage == 0) return std::nullopt;
  const double volts = static_cast<double>(*voltage) / 1e6;
  const auto inMicrowattHours = [volts](std::int64_t amount) {
    return std::llround(static_cast<double>(amount) * volts);
  };
  return {{inMicrowattHours(charge->now), inMicrowattHours(charge->full)}};
}

/// No more than what this supply is to be judged by: some attributes ask the hardware.
PowerSupply readSupply(const std::string& folder) {
  PowerSupply supply;
  supply.type = readAttributeLine(folder + "/type");
  supply.scope = readAttributeLine(folder + "/scope");
  if (supply.scope == "Device") return supply;
  if (supply.type == "Battery") supply.present = readNumberOf(folder + "/present");
  if (isInternalBattery(supply) || supply.type == "UPS") {
    supply.status = readAttributeLine(folder + "/status");
    supply.charge = readCharge(folder);
  } else {
    supply.online = readNumberOf(folder + "/online");
  }
  return supply;
}

struct Observer {
  std::function<void()> changed;
  std::shared_ptr<sd_device_monitor> monitor;
};

int onDevice(sd_device_monitor* /*monitor*/, sd_device* /*device*/, void* observer) {
  const Observer copy = *static_cast<Observer*>(observer);  // which may go away while it is told
  copy.changed();
  return 0;
}

}  // namespace

SysfsPowerSources::SysfsPowerSources(sd_event* event, const std::string& sysRoot)
    : event_(event), folder_(sysRoot + "/class/" + kSubsystem) {}

std::optional<std::vector<PowerSourceDescription>> SysfsPowerSources::list() const {
  const auto entries = entriesOf(folder_);
  if (!entries) return std::nullopt;
  std::vector<PowerSupply> supplies;
  for (const auto& entry : *entries) supplies.push_back(readSupply(entry.string()));
  if (std::count_if(supplies.begin(), supplies.end(), isInternalBattery) > 1) {
    for (std::size_t index = 0; index < supplies.size(); ++index) {
      if (isInternalBattery(supplies[index])) supplies[index].energy = readEnergy((*entries)[index].string());
    }
  }
  return describePowerSources(supplies);
}

Subscription SysfsPowerSources::observe(std::function<void()> changed) {
  sd_device_monitor* monitor = nullptr;
  if (sd_device_monitor_new(&monitor) < 0) return Subscription([] {});
  auto observer = std::make_shared<Observer>();
  observer->changed = std::move(changed);
  observer->monitor.reset(monitor, sd_device_monitor_unref);
  [[maybe_unused]] const bool listening =
      sd_device_monitor_filter_add_match_subsystem_devtype(monitor, kSubsystem, nullptr) >= 0 &&
      sd_device_monitor_attach_event(monitor, event_) >= 0 &&
      sd_device_monitor_start(monitor, onDevice, observer.get()) >= 0;
  return Subscription([observer = std::move(observer)]() mutable { observer.reset(); });
}

}  // namespace nimbo
