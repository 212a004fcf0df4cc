// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <bit>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "system/smc_connection.h"

namespace nimbo {

/// A controller that answers the wire format: it knows keys with a type and bytes, and can be made to
/// fail in each of the ways the real one does. Records connections and the keys asked for.
class FakeSmcService final : public SmcService {
 public:
  struct Sensor {
    std::string type;                            ///< four characters
    std::vector<std::uint8_t> bytes;             ///< at most 32 are answered
    std::uint32_t reportedSize = 0;              ///< of the bytes, as its key info tells
    std::int32_t returnCode = 0;                 ///< of calls that read the bytes
    std::uint8_t resultByte = 0;                 ///< in replies with the bytes
    std::size_t replySize = SmcRecord().size();  ///< of replies with the bytes
  };

  /// A key of type "sp78": big-endian, 8 fraction bits.
  void setFixed(const std::string& key, std::uint16_t bits) {
    setBytes(key, "sp78", {static_cast<std::uint8_t>(bits >> 8), static_cast<std::uint8_t>(bits)});
  }
  /// A key of type "flt ": little-endian.
  void setFloat(const std::string& key, float celsius) {
    const auto bits = std::bit_cast<std::uint32_t>(celsius);
    setBytes(key, "flt ",
             {static_cast<std::uint8_t>(bits), static_cast<std::uint8_t>(bits >> 8),
              static_cast<std::uint8_t>(bits >> 16), static_cast<std::uint8_t>(bits >> 24)});
  }
  /// Likewise; one without a value fails.
  void setReading(const std::string& key, std::optional<double> celsius) {
    setFloat(key, static_cast<float>(celsius.value_or(50)));
    sensors[key].returnCode = celsius ? 0 : 1;
  }
  void setBytes(const std::string& key, std::string type, std::vector<std::uint8_t> bytes) {
    const auto size = static_cast<std::uint32_t>(bytes.size());
    sensors[key] = {std::move(type), std::move(bytes), size};
  }

  [[nodiscard]] std::unique_ptr<SmcConnection> open() override {
    if (!present) return nullptr;
    ++openConnections;
    return std::make_unique<Connection>(*this);
  }
  [[nodiscard]] std::string cpuBrand() override {
    ++brandReads;
    return brand;
  }

  bool present = true;
  std::string brand;
  std::map<std::string, Sensor> sensors;
  int openConnections = 0;
  int brandReads = 0;
  std::vector<SmcRecord> requests;
  std::vector<std::string> infoKeys;  ///< keys whose info was asked for, in order

 private:
  class Connection final : public SmcConnection {
   public:
    explicit Connection(FakeSmcService& service) : service_(service) {}
    ~Connection() override { --service_.openConnections; }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    [[nodiscard]] SmcReply call(const SmcRecord& request) override { return service_.answer(request); }

   private:
    FakeSmcService& service_;
  };

  [[nodiscard]] SmcReply answer(const SmcRecord& request) {
    constexpr std::uint8_t kReadBytes = 5;
    constexpr std::uint8_t kReadKeyInfo = 9;
    constexpr std::uint8_t kKeyNotFound = 0x84;
    requests.push_back(request);
    const std::string key(request.rend() - 4, request.rend());  // stored little-endian, first character last
    const auto sensor = sensors.find(key);
    SmcReply reply{0, request.size(), {}};
    if (request[42] == kReadKeyInfo) infoKeys.push_back(key);
    if (sensor == sensors.end()) {
      reply.record[40] = kKeyNotFound;
    } else if (request[42] == kReadKeyInfo) {
      putInfo(sensor->second, reply.record);
    } else if (request[42] == kReadBytes && request[28] == sensor->second.reportedSize) {
      reply.returnCode = sensor->second.returnCode;
      reply.size = sensor->second.replySize;
      reply.record[40] = sensor->second.resultByte;
      std::copy_n(sensor->second.bytes.begin(), std::min<std::size_t>(sensor->second.bytes.size(), 32),
                  reply.record.begin() + 48);
    } else {
      reply.record[40] = 0x89;  // an argument it does not accept
    }
    return reply;
  }

  static void putInfo(const Sensor& sensor, SmcRecord& record) {
    for (std::size_t index = 0; index < 4; ++index) {
      record[28 + index] = static_cast<std::uint8_t>(sensor.reportedSize >> (8 * index));
      record[32 + index] = static_cast<std::uint8_t>(sensor.type[3 - index]);
    }
  }
};

}  // namespace nimbo
