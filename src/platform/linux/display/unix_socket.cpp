// SPDX-License-Identifier: MIT
#include "platform/linux/display/unix_socket.h"

#include <sys/socket.h>
#include <sys/un.h>

#include <array>
#include <cerrno>

namespace nimbo {

UniqueFd connectToUnixSocket(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.empty() || path.size() >= sizeof address.sun_path) return {};
  path.copy(address.sun_path, path.size());
  UniqueFd socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  if (::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) return {};
  return socket;
}

bool sendWhole(const UniqueFd& socket, const std::string& bytes) {
  return ::send(socket.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(bytes.size());
}

bool receiveAvailable(const UniqueFd& socket, std::string& bytes) {
  std::array<char, 4096> buffer{};
  for (;;) {
    const ssize_t size = ::recv(socket.get(), buffer.data(), buffer.size(), 0);
    if (size > 0) {
      bytes.append(buffer.data(), static_cast<std::size_t>(size));
    } else {
      return size < 0 && (errno == EAGAIN || errno == EINTR);
    }
  }
}

}  // namespace nimbo
