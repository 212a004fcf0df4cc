// SPDX-License-Identifier: MIT
#include "platform/linux/power/sysfs_power_sources.h"

#include <dirent.h>
#include <systemd/sd-device.h>

#include <algorithm>
#include <cerrno>
#include <limits>
#include <utility>

#include "base/observer_list.h"
#include "base/unique_handle.h"
#include "platform/linux/machine/proc_file.h"
#include "platform/linux/power/power_supply.h"

namespace nimbo {
namespace {

constexpr const char* kSubsystem = "power_supply";

struct FolderRelease {
  void operator()(DIR* folder) const { ::closedir(folder); }
};

/// In the order of their names; none without the folder, absent when it cannot be listed.
std::optional<std::vector<std::string>> namesIn(const std::string& path) {
  const std::unique_ptr<DIR, FolderRelease> folder(::opendir(path.c_str()));
  if (!folder) return errno == ENOENT ? std::optional(std::vector<std::string>()) : std::nullopt;
  std::vector<std::string> names;
  while (const dirent* entry = ::readdir(folder.get())) {
    if (entry->d_name[0] != '.') names.emplace_back(entry->d_name);
  }
  std::sort(names.begin(), names.end());
  return names;
}

/// The attributes of one supply.
class Attributes {
 public:
  explicit Attributes(std::string folder) : folder_(std::move(folder) + '/') {}

  [[nodiscard]] std::string text(const std::string& name) const {
    const auto whole = readAttribute(folder_ + name);
    return whole ? whole->substr(0, whole->find('\n')) : std::string();
  }

  [[nodiscard]] std::optional<std::int64_t> number(const std::string& name) const {
    constexpr std::uint64_t kLargest = std::numeric_limits<std::int64_t>::max();
    const auto number = parseNumber(text(name));
    return number && *number <= kLargest ? std::optional(static_cast<std::int64_t>(*number)) : std::nullopt;
  }

 private:
  std::string folder_;
};

/// What the desktop shows as the charge, else what stands behind it.
std::optional<PowerSupply::Charge> readCharge(const Attributes& attributes) {
  constexpr std::int64_t kWhole = 100;
  if (const auto percent = attributes.number("capacity"); percent && *percent <= kWhole) return {{*percent, kWhole}};
  for (const std::string unit : {"energy", "charge"}) {
    const auto full = attributes.number(unit + "_full");
    const auto now = full ? attributes.number(unit + "_now") : std::nullopt;
    if (now && *full > 0) return {{*now, *full}};
  }
  return std::nullopt;
}

/// No more than what this supply is to be judged by: some attributes ask the hardware.
PowerSupply readSupply(const Attributes& attributes) {
  PowerSupply supply;
  supply.type = attributes.text("type");
  supply.scope = attributes.text("scope");
  if (supply.scope == "Device") return supply;
  if (supply.type == "Battery") supply.present = attributes.number("present");
  if (isInternalBattery(supply) || supply.type == "UPS") {
    supply.status = attributes.text("status");
    supply.charge = readCharge(attributes);
  } else {
    supply.online = attributes.number("online");
  }
  return supply;
}

struct SdDeviceMonitorTraits {
  using Handle = sd_device_monitor*;
  static Handle invalid() { return nullptr; }
  static void release(Handle monitor) { sd_device_monitor_unref(monitor); }
};
using DeviceMonitor = UniqueHandle<SdDeviceMonitorTraits>;

}  // namespace

/// Listens to udev for as long as it lives, where udev can be listened to.
class SysfsPowerSources::Monitor {
 public:
  explicit Monitor(sd_event* event) {
    sd_device_monitor* monitor = nullptr;
    if (sd_device_monitor_new(&monitor) < 0) return;
    monitor_.reset(monitor);
    const bool listening = sd_device_monitor_filter_add_match_subsystem_devtype(monitor, kSubsystem, nullptr) >= 0 &&
                           sd_device_monitor_attach_event(monitor, event) >= 0 &&
                           sd_device_monitor_start(monitor, onDevice, this) >= 0;
    if (!listening) monitor_.reset();
  }
  Monitor(const Monitor&) = delete;
  Monitor& operator=(const Monitor&) = delete;

  [[nodiscard]] Subscription add(std::function<void()> changed) { return observers_.add(std::move(changed)); }

 private:
  static int onDevice(sd_device_monitor* monitor, sd_device* /*device*/, void* data) {
    // The last observer may drop both of them while it is told.
    const DeviceMonitor keep(sd_device_monitor_ref(monitor));
    const ObserverList<> observers = static_cast<Monitor*>(data)->observers_;
    observers.notify();
    return 0;
  }

  ObserverList<> observers_;
  DeviceMonitor monitor_;
};

SysfsPowerSources::SysfsPowerSources(sd_event* event, const std::string& sysRoot)
    : event_(event), folder_(sysRoot + "/class/" + kSubsystem) {}

std::optional<std::vector<PowerSourceDescription>> SysfsPowerSources::list() const {
  const auto names = namesIn(folder_);
  if (!names) return std::nullopt;
  std::vector<PowerSupply> supplies;
  for (const std::string& name : *names) supplies.push_back(readSupply(Attributes(folder_ + '/' + name)));
  return describePowerSources(supplies);
}

Subscription SysfsPowerSources::observe(std::function<void()> changed) {
  auto monitor = monitor_.lock();
  if (!monitor) monitor_ = monitor = std::make_shared<Monitor>(event_);
  auto entry = std::make_shared<Subscription>(monitor->add(std::move(changed)));
  // The observer holds the monitor, which therefore goes with the last one.
  return Subscription([monitor = std::move(monitor), entry = std::move(entry)] { entry->reset(); });
}

}  // namespace nimbo
