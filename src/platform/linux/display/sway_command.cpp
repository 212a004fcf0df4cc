// SPDX-License-Identifier: MIT
#include "platform/linux/display/sway_command.h"

#include <poll.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <nlohmann/json.hpp>
#include <optional>
#include <string_view>
#include <utility>

#include "platform/linux/display/unix_socket.h"

namespace nimbo {
namespace {

// Both directions: the magic, the length of what follows the header, the type; numbers as the machine has them.
constexpr std::string_view kMagic = "i3-ipc";
constexpr std::size_t kHeader = kMagic.size() + 2 * sizeof(std::uint32_t);
constexpr std::uint32_t kRunCommand = 0;

void append(std::string& bytes, std::uint32_t number) {
  bytes.append(reinterpret_cast<const char*>(&number), sizeof number);
}

std::string message(const std::string& command) {
  std::string bytes(kMagic);
  append(bytes, static_cast<std::uint32_t>(command.size()));
  append(bytes, kRunCommand);
  return bytes + command;
}

/// Absent while the reply is not whole.
std::optional<std::string_view> payload(std::string_view reply) {
  if (reply.size() < kHeader) return std::nullopt;
  std::uint32_t size = 0;
  std::memcpy(&size, reply.data() + kMagic.size(), sizeof size);
  if (reply.size() - kHeader < size) return std::nullopt;
  return reply.substr(kHeader, size);
}

// [{"success": true}], with one entry for each command.
bool succeeded(std::string_view reply) {
  const auto results = nlohmann::json::parse(reply, nullptr, false);
  return results.is_array() && !results.empty() && std::all_of(results.begin(), results.end(), [](const auto& result) {
           return result.is_object() && result.contains("success") && result["success"] == nlohmann::json(true);
         });
}

}  // namespace

SwayCommand::SwayCommand(MainLoop& loop, const std::string& socket, const std::string& command,
                         std::function<void(bool carriedOut)> done)
    : done_(std::move(done)), socket_(connectToUnixSocket(socket)) {
  if (socket_ && sendWhole(socket_, message(command))) {
    readable_ = loop.watch(socket_.get(), [this] { receive(); });
    return;
  }
  const auto now = std::chrono::system_clock::time_point{};
  readable_ = loop.at(now, std::chrono::milliseconds::zero(), [this] { std::exchange(done_, nullptr)(false); });
}

void SwayCommand::receive() {
  const bool open = receiveAvailable(socket_, received_);
  const auto reply = payload(received_);
  if (!reply && open) return;
  readable_.reset();
  std::exchange(done_, nullptr)(reply && succeeded(*reply));
}

void runLastSwayCommand(const std::string& socket, const std::string& command, std::chrono::milliseconds limit) {
  const UniqueFd connection = connectToUnixSocket(socket);
  if (!connection || !sendWhole(connection, message(command))) return;
  pollfd answer{connection.get(), POLLIN, 0};
  ::poll(&answer, 1, static_cast<int>(limit.count()));
}

}  // namespace nimbo
