// SPDX-License-Identifier: MIT
#pragma once

#include <sys/socket.h>
#include <sys/un.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <functional>
#include <list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/linux/display/unix_socket.h"
#include "platform/main_loop.h"
#include "support/services/temporary_tree.h"

namespace nimbo {

/// sway with its two sockets: for commands, and for Wayland with a user whom the test plays. Its
/// display goes off and on by command only.
class FakeSway {
 public:
  enum class Idle { none, kwin, ext, extVersion2 };

  /// Versions before 1.8 know the old word "dpms" only.
  explicit FakeSway(MainLoop& loop, Idle idle = Idle::ext) : loop_(loop), idle_(idle) {
    commands_ = listen("commands", [this](Client& client) { obey(client); });
    wayland_ = listen("wayland", [this](Client& client) { speak(client); });
  }
  FakeSway(const FakeSway&) = delete;
  FakeSway& operator=(const FakeSway&) = delete;

  [[nodiscard]] std::string commandSocket() const { return (folder_.path() / "commands").string(); }
  [[nodiscard]] std::string waylandSocket() const { return (folder_.path() / "wayland").string(); }

  // What the user does.
  void pause() { tellIdle(0); }
  void moveMouse() { tellIdle(1); }

  /// Ends the Wayland part.
  void hangUp() {
    clients_.clear();
    watching = false;
  }

  bool displayOn = true;
  bool knowsPower = true;
  bool obeys = true;
  bool watching = false;             ///< somebody wants to hear of pauses
  std::uint32_t watchedPause = 0;    ///< and of what length, in ms
  bool deafToInhibitors = false;     ///< and even when a film runs
  std::vector<std::string> ordered;  ///< every command

 private:
  struct Client {
    UniqueFd socket;
    std::string received;
    std::uint32_t notification = 0;
    Subscription readable;
  };
  struct Listener {
    UniqueFd socket;
    Subscription incoming;
  };

  Listener listen(const char* name, std::function<void(Client&)> serve) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    (folder_.path() / name).string().copy(address.sun_path, sizeof address.sun_path - 1);
    UniqueFd socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    ::bind(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address);
    ::listen(socket.get(), 5);
    const int descriptor = socket.get();
    return {std::move(socket), loop_.watch(descriptor, [this, descriptor, serve = std::move(serve)] {
              Client& client = clients_.emplace_back();
              client.socket.reset(::accept4(descriptor, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
              client.readable = loop_.watch(client.socket.get(), [this, &client, serve] { receive(client, serve); });
            })};
  }

  // Like the real one, it does not read what a client said that has hung up.
  void receive(Client& client, const std::function<void(Client&)>& serve) {
    if (receiveAvailable(client.socket, client.received)) return serve(client);
    if (client.notification != 0) watching = false;
    clients_.remove_if([&client](const Client& entry) { return &entry == &client; });
  }

  static std::uint32_t number(std::string_view bytes, std::size_t offset) {
    std::uint32_t value = 0;
    if (offset + 4 <= bytes.size()) std::memcpy(&value, bytes.data() + offset, 4);
    return value;
  }
  static std::string words(std::initializer_list<std::uint32_t> values) {
    return {reinterpret_cast<const char*>(values.begin()), values.size() * 4};
  }

  // The magic "i3-ipc", a size, a type, and the command.
  void obey(Client& client) {
    while (client.received.size() >= 14 && client.received.size() >= 14U + number(client.received, 6)) {
      const std::uint32_t size = number(client.received, 6);
      const bool carriedOut = client.received.starts_with("i3-ipc") && carryOut(client.received.substr(14, size));
      client.received.erase(0, 14U + size);
      const std::string reply = carriedOut ? R"([{"success":true}])" : R"([{"success":false,"error":"no"}])";
      const std::string header = "i3-ipc" + words({static_cast<std::uint32_t>(reply.size()), 0});
      // In two parts, as streams may do.
      [[maybe_unused]] const bool sent =
          sendWhole(client.socket, header + reply.substr(0, 5)) && sendWhole(client.socket, reply.substr(5));
    }
  }

  bool carryOut(const std::string& command) {
    ordered.push_back(command);
    for (const char* word : {"power", "dpms"}) {
      const std::string start = std::string("output * ") + word + " ";
      if (!obeys || !command.starts_with(start) || (start.find("power") != std::string::npos && !knowsPower)) continue;
      displayOn = command == start + "on";
      return true;
    }
    return false;
  }

  // Each message: an object, its size with the number of the request, and the arguments.
  void speak(Client& client) {
    while (client.received.size() >= 8 && client.received.size() >= number(client.received, 4) >> 16U) {
      const std::uint32_t size = number(client.received, 4) >> 16U;
      const std::string message = client.received.substr(0, size);
      client.received.erase(0, size);
      hear(client, number(message, 0), number(message, 4) & 0xFFFFU, std::string_view(message).substr(8));
    }
  }

  void hear(Client& client, std::uint32_t object, std::uint32_t request, std::string_view arguments) {
    if (object == 1 && request == 1) registry_ = number(arguments, 0);
    if (object == 1 && request == 0) introduce(client, number(arguments, 0));
    if (object == registry_ && number(arguments, 0) == kNotifierName) {
      notifier_ = number(arguments, arguments.size() - 4);  // the last argument of a bind
    } else if (object != 1 && object == notifier_) {
      watch(client, request, arguments);
    }
  }

  void introduce(Client& client, std::uint32_t callback) {
    announce(client, 11, "wl_compositor", 5);
    if (idle_ == Idle::kwin) announce(client, kNotifierName, "org_kde_kwin_idle", 1);
    if (idle_ == Idle::ext) announce(client, kNotifierName, "ext_idle_notifier_v1", 1);
    if (idle_ == Idle::extVersion2) announce(client, kNotifierName, "ext_idle_notifier_v1", 2);
    announce(client, 13, "wl_seat", 8);
    send(client, callback, 0, words({0}));
  }

  void announce(Client& client, std::uint32_t name, std::string_view interface, std::uint32_t version) const {
    std::string text(interface);
    text.append(4 - interface.size() % 4, '\0');
    const auto size = static_cast<std::uint32_t>(interface.size() + 1);
    send(client, registry_, 0, words({name, size}) + text + words({version}));
  }

  void watch(Client& client, std::uint32_t request, std::string_view arguments) {
    const bool kwin = idle_ == Idle::kwin;
    if (request != (kwin ? 0U : 1U) && !(idle_ == Idle::extVersion2 && request == 2)) return;
    client.notification = number(arguments, 0);
    watchedPause = number(arguments, kwin ? 8 : 4);
    deafToInhibitors = request == 2;
    watching = true;
  }

  void tellIdle(std::uint32_t event) {
    for (const Client& client : clients_) {
      if (client.notification != 0) send(client, client.notification, event, "");
    }
  }

  static void send(const Client& client, std::uint32_t object, std::uint32_t event, const std::string& arguments) {
    const auto size = static_cast<std::uint32_t>(8 + arguments.size());
    [[maybe_unused]] const bool sent = sendWhole(client.socket, words({object, size << 16U | event}) + arguments);
  }

  static constexpr std::uint32_t kNotifierName = 12;

  MainLoop& loop_;
  const Idle idle_;
  TemporaryTree folder_;
  std::uint32_t registry_ = 0;
  std::uint32_t notifier_ = 0;
  std::list<Client> clients_;
  Listener commands_;
  Listener wayland_;
};

}  // namespace nimbo
