// SPDX-License-Identifier: MIT
// Real device events from a simulated /sys: this program runs with umockdev's library preloaded.
#include <gtest/gtest.h>
#include <umockdev.h>

#include <memory>

#include "platform/contracts/power_sources_contract.h"
#include "platform/linux/loop/sd_event_main_loop.h"
#include "platform/linux/power/sysfs_power_sources.h"

namespace nimbo {
namespace {

using std::chrono::milliseconds;
using Descriptions = std::vector<PowerSourceDescription>;

/// A laptop on mains with its battery at 80 %.
class Laptop {
 public:
  Laptop() {
    charger_ = add("AC", {"type", "Mains", "online", "1"});
    battery_ = add("BAT0", {"type", "Battery", "present", "1", "status", "Charging", "capacity", "80"});
  }

  void unplug() {
    set(charger_, "online", "0");
    set(battery_, "status", "Discharging");
    report(charger_);
  }
  void drainTo(const char* percent) {
    set(battery_, "capacity", percent);
    report(battery_);
  }
  void plugMouseIn() { add("hidpp_battery_0", {"type", "Battery", "scope", "Device"}); }
  void takeBatteryOut() {
    umockdev_testbed_uevent(bed_.get(), battery_.get(), "remove");
    umockdev_testbed_remove_device(bed_.get(), battery_.get());
  }
  /// A device that is no power supply.
  void plugDiskIn() { add("sda", {"size", "1"}, "block"); }

 private:
  struct ObjectRelease {
    void operator()(UMockdevTestbed* bed) const { g_object_unref(bed); }
  };
  struct TextRelease {
    void operator()(gchar* text) const { g_free(text); }
  };
  using Path = std::unique_ptr<gchar, TextRelease>;

  Path add(const char* name, std::vector<const char*> attributes, const char* subsystem = "power_supply") {
    attributes.push_back(nullptr);
    const char* noProperties = nullptr;
    return Path(umockdev_testbed_add_devicev(bed_.get(), subsystem, name, nullptr,
                                             const_cast<gchar**>(attributes.data()),
                                             const_cast<gchar**>(&noProperties)));
  }
  void set(const Path& device, const char* attribute, const char* value) {
    umockdev_testbed_set_attribute(bed_.get(), device.get(), attribute, value);
  }
  void report(const Path& device) { umockdev_testbed_uevent(bed_.get(), device.get(), "change"); }

  std::unique_ptr<UMockdevTestbed, ObjectRelease> bed_{umockdev_testbed_new()};
  Path charger_;
  Path battery_;
};

struct SysfsHost final : PowerSourcesHost {
  [[nodiscard]] PowerSources& sources() override { return *sysfs; }
  void destroySources() override { sysfs.reset(); }
  void unplug() override { laptop.unplug(); }
  void drainTo(int percent) override { laptop.drainTo(std::to_string(percent).c_str()); }
  /// False when nothing happens for ten seconds.
  [[nodiscard]] bool becomes(const std::function<bool()>& so) override {
    while (!so()) {
      if (sd_event_run(loop.event(), 10'000'000) <= 0) return false;
    }
    return true;
  }
  void settle() override {
    while (sd_event_run(loop.event(), 0) > 0) {
    }
  }

  Laptop laptop;
  SdEventMainLoop loop;
  std::unique_ptr<SysfsPowerSources> sysfs = std::make_unique<SysfsPowerSources>(loop.event());
};
INSTANTIATE_TEST_SUITE_P(Sysfs, PowerSourcesContract, testing::Values(makePowerSourcesHost<SysfsHost>));

class PowerSupplyEventsTest : public testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(umockdev_in_mock_environment()) << "run it through umockdev-wrapper"; }

  [[nodiscard]] Subscription count() {
    return host.sysfs->observe([this] { ++changes; });
  }
  [[nodiscard]] bool changesBecome(int expected) {
    return host.becomes([&] { return changes >= expected; }) && changes == expected;
  }

  SysfsHost host;
  Laptop& laptop = host.laptop;
  int changes = 0;
};

TEST_F(PowerSupplyEventsTest, NothingIsToldWhileNothingHappens) {
  const auto observer = count();
  host.settle();
  EXPECT_EQ(changes, 0);
  EXPECT_EQ(sd_event_run(host.loop.event(), 0), 0) << "something is due";
}

TEST_F(PowerSupplyEventsTest, SupplyThatComesOrGoesIsTold) {
  const auto observer = count();
  laptop.plugMouseIn();
  ASSERT_TRUE(changesBecome(1));
  laptop.takeBatteryOut();
  ASSERT_TRUE(changesBecome(2));
  EXPECT_EQ(host.sysfs->list(), Descriptions());
}

TEST_F(PowerSupplyEventsTest, OtherDevicesAreNotTold) {
  const auto observer = count();
  laptop.plugDiskIn();
  laptop.drainTo("79");
  ASSERT_TRUE(changesBecome(1));
  host.settle();
  EXPECT_EQ(changes, 1);
}

TEST_F(PowerSupplyEventsTest, WithoutObserversNobodyListens) {
  auto observer = count();
  observer.reset();
  laptop.unplug();
  EXPECT_EQ(sd_event_run(host.loop.event(), 0), 0);
  EXPECT_EQ(changes, 0);
}

}  // namespace
}  // namespace nimbo
