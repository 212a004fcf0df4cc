// SPDX-License-Identifier: MIT
#include "platform/linux/machine/rtnetlink_network.h"

#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <memory>
#include <system_error>
#include <utility>

#include "platform/posix/files/unique_fd.h"
#include "platform/posix/loop/settling.h"

namespace nimbo {
namespace {

UniqueFd routeSocket() {
  UniqueFd socket(::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC | SOCK_NONBLOCK, NETLINK_ROUTE));
  sockaddr_nl address{};
  address.nl_family = AF_NETLINK;
  address.nl_groups = RTMGRP_IPV4_ROUTE | RTMGRP_IPV6_ROUTE;
  const bool isBound =
      socket && ::bind(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0;
  return isBound ? std::move(socket) : UniqueFd();
}

bool isDefaultRoute(const nlmsghdr& message) {
  if (message.nlmsg_type != RTM_NEWROUTE || message.nlmsg_len < NLMSG_LENGTH(sizeof(rtmsg))) return false;
  const auto& route = *static_cast<const rtmsg*>(NLMSG_DATA(&message));
  return route.rtm_dst_len == 0 && route.rtm_type == RTN_UNICAST;
}

/// Of one observer.
class RouteWatch {
 public:
  RouteWatch(MainLoop& loop, std::function<void()> connected)
      : socket_(routeSocket()), settling_(loop, std::move(connected)) {
    if (!socket_) return;
    try {
      readable_ = loop.watch(socket_.get(), [this] { receive(); });
    } catch (const std::system_error&) {  // then nothing is told, as without a socket
    }
  }

 private:
  void receive() {
    bool hasAppeared = false;
    alignas(nlmsghdr) std::array<char, 8192> buffer;
    for (;;) {
      const ssize_t size = ::recv(socket_.get(), buffer.data(), buffer.size(), 0);
      if (size < 0 && errno == ENOBUFS) hasAppeared = true;  // some were lost
      if (size < 0 && (errno == ENOBUFS || errno == EINTR)) continue;
      if (size <= 0) break;
      auto left = static_cast<unsigned>(size);
      for (const auto* message = reinterpret_cast<const nlmsghdr*>(buffer.data()); NLMSG_OK(message, left);
           message = NLMSG_NEXT(message, left)) {
        hasAppeared = hasAppeared || isDefaultRoute(*message);
      }
    }
    if (hasAppeared) settling_.sign();
  }

  const UniqueFd socket_;
  Settling settling_;
  Subscription readable_;
};

}  // namespace

Subscription RtnetlinkNetwork::observe(std::function<void()> connected) {
  return Subscription([watch = std::make_shared<RouteWatch>(loop_, std::move(connected))]() mutable { watch.reset(); });
}

}  // namespace nimbo
