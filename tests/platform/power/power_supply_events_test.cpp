// SPDX-License-Identifier: MIT
// Real device events from a simulated /sys: this program runs with umockdev's library preloaded.
#include <gtest/gtest.h>
#include <umockdev.h>

#include <memory>

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

class PowerSupplyEventsTest : public testing::Test {
 protected:
  PowerSupplyEventsTest() {
    sd_event* event = nullptr;
    sd_event_new(&event);
    event_.reset(event);
    sources = std::make_unique<SysfsPowerSources>(event);
  }
  void SetUp() override { ASSERT_TRUE(umockdev_in_mock_environment()) << "run it through umockdev-wrapper"; }

  [[nodiscard]] Subscription count() {
    return sources->observe([this] { ++changes; });
  }
  /// Dispatches until that many changes were told; false when they were not within ten seconds.
  [[nodiscard]] bool changesBecome(int expected) const {
    while (changes < expected) {
      if (sd_event_run(event_.get(), 10'000'000) <= 0) return false;
    }
    return changes == expected;
  }
  /// What is on its way already has been dispatched afterwards.
  void settle() const {
    while (sd_event_run(event_.get(), 0) > 0) {
    }
  }

  Laptop laptop;
  Event event_;
  std::unique_ptr<SysfsPowerSources> sources;
  int changes = 0;
};

TEST_F(PowerSupplyEventsTest, SimulatedLaptopIsRead) {
  EXPECT_EQ(sources->list(), (Descriptions{{"InternalBattery", "AC Power", 80, 100}}));
}

TEST_F(PowerSupplyEventsTest, PulledChargerIsToldAndTheNewStateRead) {
  std::optional<Descriptions> seen;
  const auto observer = sources->observe([&] {
    ++changes;
    seen = sources->list();
  });
  laptop.unplug();
  ASSERT_TRUE(changesBecome(1));
  EXPECT_EQ(seen, (Descriptions{{"InternalBattery", "Battery Power", 80, 100}}));
  laptop.drainTo("79");
  ASSERT_TRUE(changesBecome(2));
  EXPECT_EQ(seen, (Descriptions{{"InternalBattery", "Battery Power", 79, 100}}));
}

TEST_F(PowerSupplyEventsTest, NothingIsToldWhileNothingHappens) {
  const auto observer = count();
  settle();
  EXPECT_EQ(changes, 0);
  EXPECT_EQ(sd_event_run(event_.get(), 0), 0) << "something is due";
}

TEST_F(PowerSupplyEventsTest, SupplyThatComesOrGoesIsTold) {
  const auto observer = count();
  laptop.plugMouseIn();
  ASSERT_TRUE(changesBecome(1));
  laptop.takeBatteryOut();
  ASSERT_TRUE(changesBecome(2));
  EXPECT_EQ(sources->list(), Descriptions());
}

TEST_F(PowerSupplyEventsTest, OtherDevicesAreNotTold) {
  const auto observer = count();
  laptop.plugDiskIn();
  laptop.drainTo("79");
  ASSERT_TRUE(changesBecome(1));
  settle();
  EXPECT_EQ(changes, 1);
}

TEST_F(PowerSupplyEventsTest, EveryObserverIsTold) {
  const auto first = count();
  const auto second = count();
  laptop.unplug();
  EXPECT_TRUE(changesBecome(2));
}

TEST_F(PowerSupplyEventsTest, DroppedObserverIsNotTold) {
  auto dropped = sources->observe([] { ADD_FAILURE(); });
  const auto observer = count();
  dropped.reset();
  laptop.unplug();
  EXPECT_TRUE(changesBecome(1));
}

TEST_F(PowerSupplyEventsTest, WithoutObserversNobodyListens) {
  auto observer = count();
  observer.reset();
  laptop.unplug();
  EXPECT_EQ(sd_event_run(event_.get(), 0), 0);
  EXPECT_EQ(changes, 0);
}

TEST_F(PowerSupplyEventsTest, ListeningStartsAgainWithTheNextObserver) {
  auto observer = count();
  observer.reset();
  laptop.unplug();
  observer = count();
  laptop.drainTo("79");
  EXPECT_TRUE(changesBecome(1));
}

TEST_F(PowerSupplyEventsTest, LastObserverMayGoAwayWhileItIsTold) {
  Subscription observer;
  observer = sources->observe([&] {
    ++changes;
    observer.reset();
  });
  laptop.unplug();
  ASSERT_TRUE(changesBecome(1));
  laptop.drainTo("79");
  settle();
  EXPECT_EQ(changes, 1);
}

TEST_F(PowerSupplyEventsTest, ObserverMayOutliveTheSources) {
  auto observer = count();
  sources.reset();
  observer.reset();
  laptop.unplug();
  EXPECT_EQ(sd_event_run(event_.get(), 0), 0);
  EXPECT_EQ(changes, 0);
}

}  // namespace
}  // namespace nimbo
