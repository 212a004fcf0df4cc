// SPDX-License-Identifier: MIT
#include "platform/linux/display/wayland_idle_watch.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "platform/linux/display/unix_socket.h"

namespace nimbo {
namespace {

// Objects by the numbers that the client gives them; only the first is a given.
enum Object : std::uint32_t { display = 1, registry, roundTrip, seat, notifier, notification };

// Requests and events by their order in the protocol's XML.
constexpr std::uint16_t kDisplaySync = 0;
constexpr std::uint16_t kDisplayGetRegistry = 1;
constexpr std::uint32_t kDisplayError = 0;
constexpr std::uint16_t kRegistryBind = 0;
constexpr std::uint32_t kRegistryGlobal = 0;
constexpr std::uint16_t kGetIdleNotification = 1;
constexpr std::uint16_t kGetInputIdleNotification = 2;  // since version 2; deaf to those who inhibit idleness
constexpr std::uint16_t kKwinGetIdleTimeout = 0;
constexpr std::uint32_t kIdled = 0;
constexpr std::uint32_t kResumed = 1;

constexpr std::string_view kSeat = "wl_seat";
constexpr std::string_view kNotifier = "ext_idle_notifier_v1";
constexpr std::string_view kKwinNotifier = "org_kde_kwin_idle";

constexpr std::size_t kHeader = 8;

void append(std::string& bytes, std::uint32_t number) {
  bytes.append(reinterpret_cast<const char*>(&number), sizeof number);
}

/// With its final zero, filled up to whole words.
void append(std::string& bytes, std::string_view text) {
  append(bytes, static_cast<std::uint32_t>(text.size() + 1));
  bytes += text;
  bytes.append(4 - text.size() % 4, '\0');
}

template <class... Arguments>
std::string request(Object object, std::uint16_t opcode, Arguments... arguments) {
  std::string body;
  (append(body, arguments), ...);
  std::string bytes;
  append(bytes, object);
  append(bytes, static_cast<std::uint32_t>((kHeader + body.size()) << 16U) | opcode);
  return bytes + body;
}

std::string bind(std::uint32_t name, std::string_view interface, std::uint32_t version, Object object) {
  return request(registry, kRegistryBind, name, interface, version, static_cast<std::uint32_t>(object));
}

/// The number at `offset`; 0 past the end.
std::uint32_t number(std::string_view bytes, std::size_t offset) {
  std::uint32_t value = 0;
  if (offset + sizeof value <= bytes.size()) std::memcpy(&value, bytes.data() + offset, sizeof value);
  return value;
}

}  // namespace

WaylandIdleWatch::WaylandIdleWatch(MainLoop& loop, const std::string& socket, std::chrono::milliseconds pause,
                                   Handlers handlers)
    : pauseMilliseconds_(static_cast<std::uint32_t>(pause.count())),
      handlers_(std::move(handlers)),
      socket_(connectToUnixSocket(socket)) {
  const std::string greeting = request(display, kDisplayGetRegistry, std::uint32_t{registry}) +
                               request(display, kDisplaySync, std::uint32_t{roundTrip});
  if (socket_ && sendWhole(socket_, greeting)) {
    events_ = loop.watch(socket_.get(), [this] { receive(); });
  } else {
    const auto now = std::chrono::system_clock::time_point{};
    events_ = loop.at(now, std::chrono::milliseconds::zero(), [lost = handlers_.lost] { lost(); });
  }
}

void WaylandIdleWatch::receive() {
  if (!receiveAvailable(socket_, received_)) lost_ = true;
  while (received_.size() >= kHeader && !lost_) {
    const std::uint32_t word = number(received_, 4);
    const std::size_t size = word >> 16U;
    if (size < kHeader) lost_ = true;
    if (size < kHeader || received_.size() < size) break;
    const std::string message = received_.substr(0, size);
    received_.erase(0, size);
    handle(number(message, 0), word & 0xFFFFU, std::string_view(message).substr(kHeader));
  }
  tell();
}

void WaylandIdleWatch::handle(std::uint32_t object, std::uint32_t event, std::string_view arguments) {
  if (object == display && event == kDisplayError) {
    lost_ = true;
  } else if (object == registry && event == kRegistryGlobal) {
    announced(arguments);
  } else if (object == roundTrip) {
    lost_ = !ask();
  } else if (object == notification && (event == kIdled || event == kResumed)) {
    pausing_ = event == kIdled;
  }
}

// A name, the interface and its version.
void WaylandIdleWatch::announced(std::string_view arguments) {
  const std::size_t size = number(arguments, 4);
  if (size == 0 || size > arguments.size()) return;
  const std::string_view interface = arguments.substr(8, size - 1);
  const Global global{number(arguments, 0), number(arguments, 8 + (size + 3) / 4 * 4)};
  if (interface == kSeat && !globals_.seat) globals_.seat = global;
  if (interface == kNotifier) globals_.notifier = global;
  if (interface == kKwinNotifier) globals_.kwinNotifier = global;
}

bool WaylandIdleWatch::ask() {
  const auto& [seatGlobal, notifierGlobal, kwinGlobal] = globals_;
  if (!seatGlobal || (!notifierGlobal && !kwinGlobal)) return false;
  std::string requests = bind(seatGlobal->name, kSeat, 1, seat);
  if (notifierGlobal) {
    const std::uint32_t version = std::min(notifierGlobal->version, 2U);
    const auto get = version == 2 ? kGetInputIdleNotification : kGetIdleNotification;
    requests += bind(notifierGlobal->name, kNotifier, version, notifier);
    requests += request(notifier, get, std::uint32_t{notification}, pauseMilliseconds_, std::uint32_t{seat});
  } else {
    requests += bind(kwinGlobal->name, kKwinNotifier, 1, notifier);
    requests +=
        request(notifier, kKwinGetIdleTimeout, std::uint32_t{notification}, std::uint32_t{seat}, pauseMilliseconds_);
  }
  return sendWhole(socket_, requests);
}

// The last thing done, because the handlers may destroy this object.
void WaylandIdleWatch::tell() {
  if (lost_) {
    events_.reset();
    const auto lost = handlers_.lost;
    lost();
  } else if (std::exchange(toldPausing_, pausing_) != pausing_) {
    const auto changed = pausing_ ? handlers_.paused : handlers_.resumed;
    changed();
  }
}

}  // namespace nimbo
