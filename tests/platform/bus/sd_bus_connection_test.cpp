// SPDX-License-Identifier: MIT
#include "platform/linux/bus/sd_bus_connection.h"

#include <gtest/gtest.h>

#include <optional>

#include "platform/linux/bus/bus_name_watch.h"
#include "platform/linux/bus/sd_bus_calls.h"
#include "support/services/bus_peer.h"
#include "support/services/private_bus.h"

namespace nimbo {
namespace {

using Log = std::vector<std::string>;

TEST(BusAddress, SessionVariableComesFirst) {
  EXPECT_EQ(sessionBusAddress("unix:path=/tmp/x", "/run/user/1000"), "unix:path=/tmp/x");
  EXPECT_EQ(sessionBusAddress("", "/run/user/1000"), "unix:path=/run/user/1000/bus");
  EXPECT_EQ(sessionBusAddress("", "/run/me, you=1"), "unix:path=/run/me%2C%20you%3D1/bus");
  EXPECT_EQ(sessionBusAddress("", ""), "");
}

TEST(BusAddress, SystemVariableComesFirst) {
  EXPECT_EQ(systemBusAddress("unix:path=/tmp/x"), "unix:path=/tmp/x");
  EXPECT_EQ(systemBusAddress(""), "unix:path=/run/dbus/system_bus_socket");
}

class SdBusConnectionTest : public ::testing::Test {
 protected:
  PrivateBus bus;
  BusLoop loop;
};

TEST_F(SdBusConnectionTest, BusThatIsNotThereGivesNoConnectionButAReason) {
  for (const char* address : {"unix:path=/nonexistent", "nonsense", "autolaunch:", ""}) {
    const SdBusConnection connection(loop.event(), address);
    EXPECT_EQ(connection.get(), nullptr) << address;
    EXPECT_FALSE(connection.failure().empty()) << address;
  }
}

TEST_F(SdBusConnectionTest, LostBusIsToldOnceAndTheLoopLivesOn) {
  int lost = 0;
  const SdBusConnection connection(loop.event(), bus.address(), [&lost] { ++lost; });
  ASSERT_TRUE(loop.runUntil([&] { return sd_bus_is_ready(connection.get()) > 0; }));
  bus.stop();
  EXPECT_TRUE(loop.runUntil([&] { return lost > 0; }));
  sd_event_run(loop.event(), 0);
  EXPECT_EQ(lost, 1);
  EXPECT_EQ(sd_event_get_state(loop.event()), SD_EVENT_INITIAL);
}

TEST_F(SdBusConnectionTest, BusThatEndsBeforeItGreetsIsLostToo) {
  bus.freeze();
  int lost = 0;
  const SdBusConnection connection(loop.event(), bus.address(), [&lost] { ++lost; });
  bus.stop();
  EXPECT_TRUE(loop.runUntil([&] { return lost > 0; }));
}

TEST_F(SdBusConnectionTest, ConnectionThatIsClosedByItsOwnerIsNotLost) {
  int lost = 0;
  {
    const SdBusConnection connection(loop.event(), bus.address(), [&lost] { ++lost; });
  }
  sd_event_run(loop.event(), 0);
  EXPECT_EQ(lost, 0);
}

TEST_F(SdBusConnectionTest, CallToNobodyIsAnsweredWithAnError) {
  const BusPeer peer(loop, bus.address());
  EXPECT_TRUE(failed(peer.call("org.example.Nobody", "/", "org.example", "Hello"), SD_BUS_ERROR_SERVICE_UNKNOWN) ||
              failed(peer.call("org.example.Nobody", "/", "org.example", "Hello"), SD_BUS_ERROR_NAME_HAS_NO_OWNER));
}

TEST_F(SdBusConnectionTest, DroppedCallIsNotAnswered) {
  const BusPeer peer(loop, bus.address());
  bool answered = false;
  const BusMessage call = methodCall(peer.bus(), methodOfTheBus("GetId"));
  callAsync(call, [&answered](sd_bus_message*) { answered = true; }).reset();
  peer.settle("org.freedesktop.DBus");
  EXPECT_FALSE(answered);
}

TEST_F(SdBusConnectionTest, HandlerMayDropItsOwnSlot) {
  const BusPeer peer(loop, bus.address());
  BusSlot slot;
  bool answered = false;
  const BusMessage call = methodCall(peer.bus(), methodOfTheBus("GetId"));
  slot = callAsync(call, [&](sd_bus_message*) {
    slot.reset();
    answered = true;
  });
  EXPECT_TRUE(loop.runUntil([&] { return answered; }));
}

TEST_F(SdBusConnectionTest, WithoutABusTheHelpersDoNothing) {
  const BusMessage call = methodCall(nullptr, {"org.example", "/", "org.example", "Hello"});
  EXPECT_FALSE(call);
  EXPECT_FALSE(callAsync(call, [](sd_bus_message*) {}));
  EXPECT_FALSE(addMatch(nullptr, "type='signal'", [](sd_bus_message*) {}));
}

TEST_F(SdBusConnectionTest, StringsAreReadOnlyFromAListOfStrings) {
  const BusPeer peer(loop, bus.address());
  const std::vector<std::string> texts{"a", "b"};
  const BusMessage call = methodCall(peer.bus(), {"org.example", "/", "org.example", "Hello"}, texts, 7);
  sd_bus_message_seal(call.get(), 1, 0);
  std::vector<std::string> strings;
  EXPECT_TRUE(readStrings(call.get(), strings));
  EXPECT_EQ(strings, (Log{"a", "b"}));
  EXPECT_FALSE(readStrings(call.get(), strings));
}

class BusNameWatchTest : public SdBusConnectionTest {
 protected:
  BusNameWatchTest() : watcher(loop, bus.address()), owner(loop, bus.address()) {}

  void watch() {
    nameWatch.emplace(watcher.bus(), "org.example.Name", [this](const std::string& name) { owners.push_back(name); });
    ASSERT_TRUE(loop.runUntil([this] { return !owners.empty(); }));
  }
  [[nodiscard]] std::string ownerName() const {
    const char* name = "";
    sd_bus_get_unique_name(owner.bus(), &name);
    return name;
  }

  BusPeer watcher;
  BusPeer owner;
  std::optional<BusNameWatch> nameWatch;
  Log owners;
};

TEST_F(BusNameWatchTest, TellsThatNobodyHasTheName) {
  watch();
  EXPECT_EQ(owners, Log{""});
}

TEST_F(BusNameWatchTest, TellsWhoHasTheNameOnce) {
  owner.own("org.example.Name");
  watch();
  watcher.settle(ownerName());
  EXPECT_EQ(owners, Log{ownerName()});
}

TEST_F(BusNameWatchTest, TellsEveryChangeOfOwner) {
  watch();
  owner.own("org.example.Name");
  owner.release("org.example.Name");
  owner.own("org.example.Name");
  watcher.settle(ownerName());
  EXPECT_EQ(owners, (Log{"", ownerName(), "", ownerName()}));
}

TEST_F(BusNameWatchTest, BusThatDoesNotAnswerInTimeIsAskedAgain) {
  owner.own("org.example.Name");
  bus.freeze();
  sd_bus_set_method_call_timeout(watcher.bus(), 50'000);
  nameWatch.emplace(watcher.bus(), "org.example.Name", [this](const std::string& name) { owners.push_back(name); });
  for (int turn = 0; turn < 3; ++turn) sd_event_run(loop.event(), 50'000);
  sd_bus_set_method_call_timeout(watcher.bus(), 0);
  bus.thaw();
  EXPECT_TRUE(loop.runUntil([this] { return !owners.empty(); }));
  EXPECT_EQ(owners, Log{ownerName()});
}

TEST_F(BusNameWatchTest, OnlyTheBusIsBelieved) {
  watch();
  const char* name = "";
  sd_bus_get_unique_name(watcher.bus(), &name);
  owner.tell(name, "/org/freedesktop/DBus", "org.freedesktop.DBus", "NameOwnerChanged",
             [](sd_bus_message* signal) { sd_bus_message_append(signal, "sss", "org.example.Name", "", ":1.99"); });
  owner.settle(name);
  EXPECT_EQ(owners, Log{""});
}

TEST_F(BusNameWatchTest, OtherNamesAreNotHeard) {
  watch();
  owner.own("org.example.Name2");
  watcher.settle(ownerName());
  EXPECT_EQ(owners, Log{""});
}

TEST_F(BusNameWatchTest, MayBeDestroyedByItsCallback) {
  int told = 0;
  nameWatch.emplace(watcher.bus(), "org.example.Name", [&](const std::string&) {
    ++told;
    nameWatch.reset();
  });
  EXPECT_TRUE(loop.runUntil([&] { return told > 0; }));
  owner.own("org.example.Name");
  watcher.settle(ownerName());
  EXPECT_EQ(told, 1);
}

}  // namespace
}  // namespace nimbo
