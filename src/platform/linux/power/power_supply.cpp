// SPDX-License-Identifier: MIT
#include "platform/linux/power/power_supply.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

namespace nimbo {
namespace {

constexpr const char* kAcPower = "AC Power";

bool isForDevice(const PowerSupply& supply) { return supply.scope == "Device"; }

/// Something outside that may feed the machine and tells whether it does.
bool isMains(const PowerSupply& supply) {
  // Kernels before 4.19 name each kind of USB charger: USB_DCP, USB_PD and so on.
  const bool feeds =
      supply.type == "Mains" || supply.type == "Wireless" || supply.type == "BrickID" || supply.type.starts_with("USB");
  return feeds && supply.online && !isForDevice(supply);
}

std::optional<std::string> upsState(const PowerSupply& ups) {
  if (ups.status.empty()) return std::nullopt;
  return ups.status == "Discharging" ? kBatteryPower : kAcPower;
}

using Charge = std::optional<PowerSupply::Charge>;

PowerSourceDescription describe(const char* type, std::optional<std::string> state, const Charge& charge) {
  PowerSourceDescription description{type, std::move(state)};
  if (charge) {
    description.currentCapacity = charge->now;
    description.maxCapacity = charge->full;
  }
  return description;
}

/// Of several batteries: by their energy when each tells it, else the mean of their percents. One alone shows what
/// the desktop does.
Charge chargeOfAll(const std::vector<PowerSupply>& batteries) {
  constexpr std::int64_t kWhole = 100;
  if (batteries.size() == 1) return batteries.front().charge;
  PowerSupply::Charge energies;
  PowerSupply::Charge percents;
  bool allTellEnergy = true;
  for (const PowerSupply& battery : batteries) {
    allTellEnergy = allTellEnergy && battery.energy;
    if (allTellEnergy) energies = {energies.now + battery.energy->now, energies.full + battery.energy->full};
    if (!battery.charge) continue;
    const double part = static_cast<double>(battery.charge->now) / static_cast<double>(battery.charge->full);
    percents = {percents.now + std::llround(part * kWhole), percents.full + kWhole};
  }
  if (allTellEnergy) return energies;
  return percents.full > 0 ? Charge(percents) : std::nullopt;
}

}  // namespace

bool isInternalBattery(const PowerSupply& supply) {
  return supply.type == "Battery" && !isForDevice(supply) && supply.present != 0;
}

std::optional<std::string> powerSourceState(const std::vector<PowerSupply>& supplies) {
  const auto any = [&](auto&& matches) { return std::any_of(supplies.begin(), supplies.end(), matches); };
  const auto anyBatteryIs = [&](const char* status) {
    return any([&](const PowerSupply& supply) { return isInternalBattery(supply) && supply.status == status; });
  };
  // Plugged in, even when the battery shrinks all the same because the charger is too weak.
  if (any([](const PowerSupply& supply) { return isMains(supply) && supply.online != 0; })) return kAcPower;
  // Asked before charging, because there are machines in which one battery charges the other.
  if (anyBatteryIs("Discharging")) return kBatteryPower;
  // Some firmware never says that its USB-C ports are online; a battery that fills gives them away.
  if (anyBatteryIs("Charging")) return kAcPower;
  // The battery lags behind: it may still say "Full" or "Not charging" just after the charger was pulled.
  if (any(isMains)) return kBatteryPower;
  // No supply that could tell, but a battery that does not drain is spared by something.
  const auto isToldBattery = [](const PowerSupply& supply) {
    return isInternalBattery(supply) && !supply.status.empty();
  };
  return any(isToldBattery) ? std::optional<std::string>(kAcPower) : std::nullopt;
}

std::vector<PowerSourceDescription> describePowerSources(const std::vector<PowerSupply>& supplies) {
  const auto state = powerSourceState(supplies);
  std::vector<PowerSupply> batteries;
  std::copy_if(supplies.begin(), supplies.end(), std::back_inserter(batteries), isInternalBattery);
  std::vector<PowerSourceDescription> sources;
  if (!batteries.empty()) sources.push_back(describe(kInternalBattery, state, chargeOfAll(batteries)));
  for (const PowerSupply& supply : supplies) {
    if (supply.type == "UPS") sources.push_back(describe("UPS", upsState(supply), supply.charge));
  }
  return sources;
}

}  // namespace nimbo
