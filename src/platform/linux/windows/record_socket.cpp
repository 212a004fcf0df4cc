// SPDX-License-Identifier: MIT
#include "platform/linux/windows/record_socket.h"

#include <sys/socket.h>

#include <array>
#include <cerrno>

namespace nimbo {
namespace {

/// A list of a thousand processes is a record of a quarter of this. The kernel may grant less.
constexpr int kMostWaitingBytes = 1 << 20;

}  // namespace

bool RecordSocket::send(const std::string& record) const {
  return ::send(socket_.get(), record.data(), record.size(), MSG_DONTWAIT | MSG_NOSIGNAL) >= 0;
}

RecordSocket::Received RecordSocket::receive(std::string& record) const {
  const ssize_t size = ::recv(socket_.get(), nullptr, 0, MSG_PEEK | MSG_TRUNC | MSG_DONTWAIT);
  if (size < 0) return errno == EAGAIN || errno == EINTR ? Received::nothing : Received::ended;
  if (size == 0) return Received::ended;
  record.resize(static_cast<std::size_t>(size));
  return ::recv(socket_.get(), record.data(), record.size(), MSG_DONTWAIT) == size ? Received::record : Received::ended;
}

std::pair<UniqueFd, UniqueFd> makeRecordChannel() {
  std::array<int, 2> ends{-1, -1};
  if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0) return {};
  for (const int end : ends) ::setsockopt(end, SOL_SOCKET, SO_SNDBUF, &kMostWaitingBytes, sizeof kMostWaitingBytes);
  return {UniqueFd(ends[0]), UniqueFd(ends[1])};
}

}  // namespace nimbo
