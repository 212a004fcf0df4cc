// SPDX-License-Identifier: MIT
#include "platform/linux/bus/dbus_application_instance.h"

#include <gtest/gtest.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>

#include <atomic>
#include <optional>
#include <thread>

#include "platform/posix/files/unique_fd.h"
#include "support/services/bus_peer.h"
#include "support/services/private_bus.h"

namespace nimbo {
namespace {

using Links = std::vector<std::string>;
using std::chrono::milliseconds;

constexpr const char* kName = "com.quellwerk.Nimbo";
constexpr const char* kPath = "/com/quellwerk/Nimbo";
constexpr const char* kInterface = "org.freedesktop.Application";

/// A program of its own: its loop, connection and instance.
struct Start {
  explicit Start(const std::string& address, milliseconds limit = std::chrono::seconds(5))
      : session(loop.event(), address), instance(session, limit) {}

  BusLoop loop;
  SdBusConnection session;
  DbusApplicationInstance instance;
};

class DbusApplicationInstanceTest : public ::testing::Test {
 protected:
  ApplicationInstanceHandlers handlers() {
    return {[this] { ++activations; }, [this](const Links& links) { opened.push_back(links); }};
  }

  void startFirst() {
    first.emplace(bus.address());
    const auto role = first->instance.claim({}, handlers());
    ASSERT_TRUE(role);
    ASSERT_EQ(*role, InstanceRole::first);
  }

  /// Starts the program once more, as another process would, while the first one turns its loop.
  Result<InstanceRole, InstanceError> startLater(const Links& links) {
    Result<InstanceRole, InstanceError> role = InstanceRole::first;
    std::atomic<bool> done = false;
    const UniqueFd wakeUp(eventfd(0, EFD_CLOEXEC));
    sd_event_source* source = nullptr;
    sd_event_add_io(
        first->loop.event(), &source, wakeUp.get(), EPOLLIN,
        [](sd_event_source*, int, std::uint32_t, void*) { return 0; }, nullptr);
    const EventSource watch(source);
    std::thread process([&] {
      Start later(bus.address());
      role = later.instance.claim(links, {});
      done = true;
      eventfd_write(wakeUp.get(), 1);
    });
    EXPECT_TRUE(first->loop.runUntil([&] { return done.load(); }));
    process.join();
    return role;
  }

  PrivateBus bus;
  std::optional<Start> first;
  int activations = 0;
  std::vector<Links> opened;
};

TEST_F(DbusApplicationInstanceTest, FirstStartOwnsTheName) {
  startFirst();
  const BusPeer peer(first->loop, bus.address());
  const char* unique = nullptr;
  sd_bus_get_unique_name(first->session.get(), &unique);
  EXPECT_EQ(peer.ownerOf(kName), unique);
}

TEST_F(DbusApplicationInstanceTest, LaterStartActivatesTheFirst) {
  startFirst();
  const auto role = startLater({});
  ASSERT_TRUE(role);
  EXPECT_EQ(*role, InstanceRole::later);
  EXPECT_EQ(activations, 1);
  EXPECT_TRUE(opened.empty());
}

TEST_F(DbusApplicationInstanceTest, LaterStartHandsItsLinksOver) {
  startFirst();
  const auto role = startLater({"nimbo://usage", "nimbo://awake"});
  ASSERT_TRUE(role);
  EXPECT_EQ(*role, InstanceRole::later);
  EXPECT_EQ(opened, (std::vector<Links>{{"nimbo://usage", "nimbo://awake"}}));
  EXPECT_EQ(activations, 0);
}

TEST_F(DbusApplicationInstanceTest, LinkThatIsNotUtf8DoesNotFailTheStart) {
  startFirst();
  const auto role = startLater({"nimbo://\xff"});
  ASSERT_TRUE(role);
  EXPECT_EQ(opened, (std::vector<Links>{{"nimbo://\uFFFD"}}));
}

TEST_F(DbusApplicationInstanceTest, NameIsFreeAgainAfterTheFirstEnds) {
  startFirst();
  first.reset();
  startFirst();
}

TEST_F(DbusApplicationInstanceTest, ReleasedNameIsFreeWhileTheFirstStillLives) {
  startFirst();
  first->instance.release();
  Start next(bus.address());
  const auto role = next.instance.claim({}, {});
  ASSERT_TRUE(role);
  EXPECT_EQ(*role, InstanceRole::first);
}

TEST_F(DbusApplicationInstanceTest, DesktopsCallTheSameInterface) {
  startFirst();
  const BusPeer desktop(first->loop, bus.address());
  EXPECT_TRUE(succeeded(desktop.call(kName, kPath, kInterface, "Activate",
                                     [](sd_bus_message* call) { sd_bus_message_append(call, "a{sv}", 0); })));
  EXPECT_TRUE(succeeded(desktop.call(kName, kPath, kInterface, "Open", [](sd_bus_message* call) {
    sd_bus_message_append(call, "asa{sv}", 1, "nimbo://usage", 1, "activation-token", "s", "x");
  })));
  EXPECT_EQ(activations, 1);
  EXPECT_EQ(opened, (std::vector<Links>{{"nimbo://usage"}}));
}

TEST_F(DbusApplicationInstanceTest, OpeningNothingActivates) {
  startFirst();
  const BusPeer desktop(first->loop, bus.address());
  desktop.call(kName, kPath, kInterface, "Open",
               [](sd_bus_message* call) { sd_bus_message_append(call, "asa{sv}", 0, 0); });
  EXPECT_EQ(activations, 1);
  EXPECT_TRUE(opened.empty());
}

TEST_F(DbusApplicationInstanceTest, UnknownActionsAndRubbishGetErrors) {
  startFirst();
  const BusPeer desktop(first->loop, bus.address());
  EXPECT_TRUE(failed(desktop.call(kName, kPath, kInterface, "ActivateAction", [](sd_bus_message* call) {
    sd_bus_message_append(call, "sava{sv}", "explode", 0, 0);
  })));
  EXPECT_TRUE(failed(desktop.call(kName, kPath, kInterface, "Open",
                                  [](sd_bus_message* call) { sd_bus_message_append(call, "i", 5); })));
  EXPECT_EQ(activations, 0);
  EXPECT_TRUE(opened.empty());
}

TEST_F(DbusApplicationInstanceTest, NoSessionBusIsAClearSentence) {
  Start lonely("unix:path=/nonexistent/bus");
  const auto role = lonely.instance.claim({}, handlers());
  ASSERT_FALSE(role);
  EXPECT_EQ(role.error().message, "Nimbo needs a session bus, and none can be reached: No such file or directory.");
}

TEST_F(DbusApplicationInstanceTest, NoAddressIsAClearSentence) {
  Start lonely("");
  const auto role = lonely.instance.claim({}, handlers());
  ASSERT_FALSE(role);
  EXPECT_EQ(role.error().message, "Nimbo needs a session bus, and none can be reached: no address is known.");
}

TEST_F(DbusApplicationInstanceTest, BusThatHangsIsGivenUpInTime) {
  bus.freeze();
  Start patient(bus.address(), milliseconds(100));
  const auto role = patient.instance.claim({}, handlers());
  bus.thaw();
  ASSERT_FALSE(role);
  EXPECT_EQ(role.error().message, "Nimbo needs a session bus, and none can be reached: Connection timed out.");
}

TEST_F(DbusApplicationInstanceTest, FirstThatHangsIsReported) {
  startFirst();  // and never turns its loop
  Start later(bus.address(), milliseconds(100));
  const auto role = later.instance.claim({"nimbo://usage"}, {});
  ASSERT_FALSE(role);
  EXPECT_EQ(role.error().message, "Nimbo is running but does not answer: Connection timed out.");
}

TEST_F(DbusApplicationInstanceTest, LinkSentWhileStartingWaitsForTheLoop) {
  startFirst();
  const BusPeer desktop(first->loop, bus.address());
  EXPECT_EQ(activations, 0);
  desktop.call(kName, kPath, kInterface, "Activate",
               [](sd_bus_message* call) { sd_bus_message_append(call, "a{sv}", 0); });
  EXPECT_EQ(activations, 1);
}

}  // namespace
}  // namespace nimbo
