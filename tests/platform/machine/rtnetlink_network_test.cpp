// SPDX-License-Identifier: MIT
// Against the kernel, in a network of the test's own.
#include "platform/linux/machine/rtnetlink_network.h"

#include <gtest/gtest.h>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <net/if.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <systemd/sd-event.h>

#include <thread>

#include "platform/linux/loop/sd_event_main_loop.h"
#include "platform/posix/files/unique_fd.h"

namespace nimbo {
namespace {

using namespace std::chrono_literals;

/// Turns the loopback device of this thread's network on.
bool raiseLoopback() {
  const UniqueFd socket(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
  ifreq request{};
  request.ifr_name[0] = 'l';
  request.ifr_name[1] = 'o';
  request.ifr_flags = IFF_UP;
  return ::ioctl(socket.get(), SIOCSIFFLAGS, &request) == 0;
}

/// Adds a route through that device to all addresses that share their first bits with 0.0.0.0.
bool addRoute(unsigned char bits) {
  struct {
    nlmsghdr head{};
    rtmsg route{};
    rtattr deviceHead{};
    int device = 1;
    rtattr destinationHead{};
    unsigned destination = 0;
  } request;
  request.head = {sizeof(request), RTM_NEWROUTE, NLM_F_REQUEST | NLM_F_CREATE | NLM_F_ACK, 1, 0};
  request.route.rtm_family = AF_INET;
  request.route.rtm_dst_len = bits;
  request.route.rtm_table = RT_TABLE_MAIN;
  request.route.rtm_scope = RT_SCOPE_LINK;
  request.route.rtm_type = RTN_UNICAST;
  request.deviceHead = {RTA_LENGTH(sizeof(int)), RTA_OIF};
  request.destinationHead = {RTA_LENGTH(sizeof(unsigned)), RTA_DST};
  const UniqueFd socket(::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_ROUTE));
  struct {
    nlmsghdr head{};
    nlmsgerr error{};
    rtmsg rest{};
  } answer;
  return ::send(socket.get(), &request, sizeof(request), 0) == sizeof(request) &&
         ::recv(socket.get(), &answer, sizeof(answer), 0) > 0 && answer.error.error == 0;
}

// In a thread, because only it gets into the new network; false where that is not allowed.
bool inNewNetwork(const std::function<void()>& test) {
  bool isAllowed = false;
  std::thread([&] {
    isAllowed = ::unshare(CLONE_NEWNET) == 0;
    if (isAllowed) test();
  }).join();
  return isAllowed;
}

TEST(RtnetlinkNetwork, DefaultRouteIsToldOnceItHasSettledAndOthersAreNot) {
  const bool isAllowed = inNewNetwork([] {
    SdEventMainLoop loop;
    RtnetlinkNetwork network(loop, 100ms);
    int told = 0;
    auto subscription = network.observe([&told] { ++told; });
    const auto turnFor = [&](std::chrono::milliseconds time) {
      const auto end = std::chrono::steady_clock::now() + time;
      while (std::chrono::steady_clock::now() < end && told == 0) sd_event_run(loop.event(), 50'000);
    };
    ASSERT_TRUE(raiseLoopback());
    ASSERT_TRUE(addRoute(8));
    turnFor(1s);
    EXPECT_EQ(told, 0);
    const auto added = std::chrono::steady_clock::now();
    ASSERT_TRUE(addRoute(0));
    turnFor(20s);
    EXPECT_EQ(told, 1);
    EXPECT_GE(std::chrono::steady_clock::now() - added, 100ms);
  });
  if (!isAllowed) GTEST_SKIP() << "may not make a network";
}

TEST(RtnetlinkNetwork, ObserverMayEndInWhatItIsTold) {
  const bool isAllowed = inNewNetwork([] {
    SdEventMainLoop loop;
    RtnetlinkNetwork network(loop, 100ms);
    Subscription subscription;
    subscription = network.observe([&] {
      subscription.reset();
      loop.quit();
    });
    const auto bound = loop.every(20s, 0s, [&] { loop.quit(); });
    ASSERT_TRUE(raiseLoopback());
    ASSERT_TRUE(addRoute(0));
    loop.run();
    EXPECT_FALSE(subscription);
  });
  if (!isAllowed) GTEST_SKIP() << "may not make a network";
}

}  // namespace
}  // namespace nimbo
