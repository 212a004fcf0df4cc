// SPDX-License-Identifier: MIT
#pragma once

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>
#include <xcb/dpms.h>
#include <xcb/xcb.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "platform/posix/files/unique_fd.h"

namespace nimbo {

/// How the power of the display stands.
struct FakeX11Power {
  bool capable = true;
  bool enabled = true;
  std::array<std::uint16_t, 3> timeouts = {600, 900, 1200};  ///< standby, suspend, off; seconds
  std::uint16_t level = XCB_DPMS_DPMS_MODE_ON;
};

/// The little of an X server that has to do with the power of the display, which virtual servers do
/// not have. It serves one client after the other; what the client did is told after its end.
class FakeX11Server {
 public:
  enum class Manner { serves, hasNoPowerManagement, hangs, closesInsteadOfAnswering };

  explicit FakeX11Server(Manner manner = Manner::serves, FakeX11Power initial = {}) : power(initial), manner_(manner) {
    // By TCP, whose ports nobody else can have: the servers' own sockets have numbers to be shared.
    sockaddr_in address{};
    socklen_t size = sizeof address;
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    listener_.reset(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    ::bind(listener_.get(), reinterpret_cast<const sockaddr*>(&address), size);
    ::getsockname(listener_.get(), reinterpret_cast<sockaddr*>(&address), &size);
    display_ = "127.0.0.1:" + std::to_string(ntohs(address.sin_port) - kFirstPort);
    ::listen(listener_.get(), 5);
    if (manner != Manner::hangs) thread_ = std::thread([this] { serve(); });
  }
  ~FakeX11Server() { stop(); }
  FakeX11Server(const FakeX11Server&) = delete;
  FakeX11Server& operator=(const FakeX11Server&) = delete;

  /// In the form of DISPLAY.
  [[nodiscard]] const std::string& display() const { return display_; }

  /// Ends it, so that `power` may be read.
  void stop() {
    ::shutdown(listener_.get(), SHUT_RDWR);
    if (thread_.joinable()) thread_.join();
    listener_.reset();
  }

  FakeX11Power power;

 private:
  static constexpr int kFirstPort = 6000;  // of display 0
  static constexpr std::uint8_t kDpmsOpcode = 140;

  void serve() {
    for (;;) {
      const UniqueFd client(::accept(listener_.get(), nullptr, nullptr));
      if (!client) return;
      if (setUp(client.get())) {
        sequence_ = 0;
        while (answerOne(client.get())) {
        }
      }
    }
  }

  static bool readAll(int client, void* data, std::size_t size) {
    return size == 0 || ::recv(client, data, size, MSG_WAITALL) == static_cast<ssize_t>(size);
  }
  template <class Record>
  static void write(int client, const Record& record) {
    [[maybe_unused]] const auto sent = ::send(client, &record, sizeof record, MSG_NOSIGNAL);
  }

  bool setUp(int client) const {
    xcb_setup_request_t request{};
    if (!readAll(client, &request, sizeof request)) return false;
    const auto padded = [](std::size_t size) { return (size + 3) / 4 * 4; };
    std::vector<char> authorization(padded(request.authorization_protocol_name_len) +
                                    padded(request.authorization_protocol_data_len));
    if (!readAll(client, authorization.data(), authorization.size())) return false;
    if (manner_ == Manner::closesInsteadOfAnswering) return false;
    struct {
      xcb_setup_t setup;
      xcb_screen_t screen;
    } answer{};
    answer.setup.status = 1;
    answer.setup.protocol_major_version = 11;
    answer.setup.length = (sizeof answer - 8) / 4;
    answer.setup.resource_id_mask = 0x1fffff;
    answer.setup.maximum_request_length = 0xffff;
    answer.setup.roots_len = 1;
    write(client, answer);
    return true;
  }

  // Every answer to the few requests there are has 32 bytes.
  template <class Reply>
  void reply(int client, Reply content) const {
    static_assert(sizeof content <= 32);
    std::array<char, 32> bytes{};
    content.response_type = 1;
    content.sequence = sequence_;
    std::memcpy(bytes.data(), &content, sizeof content);
    write(client, bytes);
  }

  void refuse(int client, std::uint8_t code) const {
    xcb_value_error_t error{};
    error.error_code = code;
    error.sequence = sequence_;
    write(client, error);
  }

  bool answerOne(int client) {
    xcb_dpms_force_level_request_t head{};  // the longest head that all of them have
    if (!readAll(client, &head, 4)) return false;
    std::vector<std::uint16_t> rest(2U * (head.length - 1U));
    if (!readAll(client, rest.data(), rest.size() * 2)) return false;
    ++sequence_;
    if (head.major_opcode == XCB_QUERY_EXTENSION) answerExtension(client);
    if (head.major_opcode == XCB_GET_INPUT_FOCUS) reply(client, xcb_get_input_focus_reply_t{});
    if (head.major_opcode == kDpmsOpcode) answerPower(client, head.minor_opcode, rest);
    return true;
  }

  void answerExtension(int client) const {
    xcb_query_extension_reply_t extension{};
    extension.present = manner_ == Manner::hasNoPowerManagement ? 0 : 1;
    extension.major_opcode = kDpmsOpcode;
    reply(client, extension);
  }

  void answerPower(int client, std::uint8_t request, const std::vector<std::uint16_t>& values) {
    if (request == XCB_DPMS_CAPABLE) {
      xcb_dpms_capable_reply_t capable{};
      capable.capable = power.capable ? 1 : 0;
      reply(client, capable);
    } else if (request == XCB_DPMS_INFO) {
      xcb_dpms_info_reply_t info{};
      info.power_level = power.level;
      info.state = power.enabled ? 1 : 0;
      reply(client, info);
    } else if (request == XCB_DPMS_SET_TIMEOUTS) {
      power.timeouts = {values[0], values[1], values[2]};
    } else if (request == XCB_DPMS_ENABLE) {
      power.enabled = true;
    } else if (request == XCB_DPMS_FORCE_LEVEL) {
      if (!power.enabled) return refuse(client, XCB_MATCH);
      power.level = values[0];
    }
  }

  std::string display_;
  const Manner manner_;
  UniqueFd listener_;
  std::uint16_t sequence_ = 0;
  std::thread thread_;
};

}  // namespace nimbo
