// SPDX-License-Identifier: MIT
// Against the kernel, in a network of the test's own.
#include "platform/linux/machine/rtnetlink_network.h"

#include <fcntl.h>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <net/if.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include "platform/contracts/network_contract.h"
#include "platform/posix/files/unique_fd.h"
#include "support/fake_main_loop.h"

namespace nimbo {
namespace {

using namespace std::chrono_literals;

/// The network that this thread's sockets belong to while it lives, with nothing in it.
class NewNetwork {
 public:
  NewNetwork() : before_(::open("/proc/thread-self/ns/net", O_RDONLY | O_CLOEXEC)) {
    isMade_ = before_ && ::unshare(CLONE_NEWNET) == 0;
  }
  ~NewNetwork() {
    if (!isMade_) return;
    EXPECT_EQ(::setns(before_.get(), CLONE_NEWNET), 0);
  }
  NewNetwork(const NewNetwork&) = delete;
  NewNetwork& operator=(const NewNetwork&) = delete;

  /// False where that is not allowed.
  [[nodiscard]] bool isMade() const { return isMade_; }

 private:
  const UniqueFd before_;
  bool isMade_ = false;
};

/// Turns the loopback device of this thread's network on.
bool raiseLoopback() {
  const UniqueFd socket(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
  ifreq request{};
  request.ifr_name[0] = 'l';
  request.ifr_name[1] = 'o';
  request.ifr_flags = IFF_UP;
  return ::ioctl(socket.get(), SIOCSIFFLAGS, &request) == 0;
}

/// Adds or deletes a route through that device to all addresses that share their first bits with 0.0.0.0.
bool changeRoute(unsigned short change, unsigned char bits, int priority) {
  struct {
    nlmsghdr head{};
    rtmsg route{};
    rtattr deviceHead{};
    int device = 1;
    rtattr destinationHead{};
    unsigned destination = 0;
    rtattr metricHead{};
    int metric = 0;
  } request;
  request.head = {sizeof(request), change, NLM_F_REQUEST | NLM_F_CREATE | NLM_F_ACK, 1, 0};
  request.route.rtm_family = AF_INET;
  request.route.rtm_dst_len = bits;
  request.route.rtm_table = RT_TABLE_MAIN;
  request.route.rtm_scope = RT_SCOPE_LINK;
  request.route.rtm_type = RTN_UNICAST;
  request.deviceHead = {RTA_LENGTH(sizeof(int)), RTA_OIF};
  request.destinationHead = {RTA_LENGTH(sizeof(unsigned)), RTA_DST};
  request.metricHead = {RTA_LENGTH(sizeof(int)), RTA_PRIORITY};
  request.metric = priority;
  const UniqueFd socket(::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_ROUTE));
  struct {
    nlmsghdr head{};
    nlmsgerr error{};
    rtmsg rest{};
  } answer;
  return ::send(socket.get(), &request, sizeof(request), 0) == sizeof(request) &&
         ::recv(socket.get(), &answer, sizeof(answer), 0) > 0 && answer.error.error == 0;
}

struct RtnetlinkHost final : NetworkHost {
  [[nodiscard]] Network& network() override { return rtnetlink; }
  void routeAppears() override { EXPECT_TRUE(changeRoute(RTM_NEWROUTE, 0, ++routes)); }
  void routeGoes() override { EXPECT_TRUE(changeRoute(RTM_DELROUTE, 0, routes--)); }
  void otherRouteAppears() override { EXPECT_TRUE(changeRoute(RTM_NEWROUTE, 8, 1)); }
  void settle() override {
    pass(2s);
    EXPECT_TRUE(loop.repeatingTimers().empty());
  }
  void almostSettle() override { pass(1999ms); }

  // The kernel tells before it answers.
  void pass(std::chrono::milliseconds time) {
    loop.runReadable();
    loop.advance(time);
  }

  const NewNetwork own;
  FakeMainLoop loop;
  RtnetlinkNetwork rtnetlink{loop};
  int routes = 0;
};

std::unique_ptr<NetworkHost> makeRtnetlinkHost() {
  auto host = std::make_unique<RtnetlinkHost>();
  if (!host->own.isMade()) return nullptr;
  EXPECT_TRUE(raiseLoopback());
  return host;
}
INSTANTIATE_TEST_SUITE_P(Rtnetlink, NetworkContract, testing::Values(makeRtnetlinkHost));
INSTANTIATE_TEST_SUITE_P(Rtnetlink, RoutedNetworkContract, testing::Values(makeRtnetlinkHost));

}  // namespace
}  // namespace nimbo
