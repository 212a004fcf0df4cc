// SPDX-License-Identifier: MIT
#include "system/temperature_sampler.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <span>
#include <string>

namespace nimbo {
namespace {

// The record holds integers in the order of the machine, and every machine with this controller is
// little-endian.
constexpr std::size_t kKeyOffset = 0;
constexpr std::size_t kDataSizeOffset = 28;
constexpr std::size_t kDataTypeOffset = 32;
constexpr std::size_t kResultOffset = 40;
constexpr std::size_t kCommandOffset = 42;
constexpr std::size_t kDataOffset = 48;
constexpr std::uint32_t kMaxDataSize = 32;
constexpr std::uint8_t kReadBytes = 5;
constexpr std::uint8_t kReadKeyInfo = 9;

struct Family {
  std::string_view brandPart;
  std::span<const std::string_view> keys;
};

constexpr std::string_view kM1Keys[] = {"Tp09", "Tp0T", "Tp01", "Tp05", "Tp0D", "Tp0H", "Tp0L", "Tp0P", "Tp0X", "Tp0b"};
constexpr std::string_view kM2Keys[] = {"Tp1h", "Tp1t", "Tp1p", "Tp1l", "Tp01", "Tp05",
                                        "Tp09", "Tp0D", "Tp0X", "Tp0b", "Tp0f", "Tp0j"};
constexpr std::string_view kM3Keys[] = {"Te05", "Te0L", "Te0P", "Te0S", "Tf04", "Tf09", "Tf0A", "Tf0B",
                                        "Tf0D", "Tf0E", "Tf44", "Tf49", "Tf4A", "Tf4B", "Tf4D", "Tf4E"};
constexpr std::string_view kM4Keys[] = {"Te05", "Te0S", "Te09", "Te0H", "Tp01", "Tp05",
                                        "Tp09", "Tp0D", "Tp0V", "Tp0Y", "Tp0b", "Tp0e"};
constexpr std::string_view kIntelKeys[] = {"TCAD", "TC0D", "TC0E", "TC0F", "TC0P"};

constexpr Family kFamilies[] = {
    {"Apple M1", kM1Keys}, {"Apple M2", kM2Keys}, {"Apple M3", kM3Keys}, {"Apple M4", kM4Keys}, {"Intel", kIntelKeys}};

std::span<const std::string_view> keysFor(std::string_view brand) {
  for (const Family& family : kFamilies) {
    if (brand.find(family.brandPart) != std::string_view::npos) return family.keys;
  }
  return {};
}

void putWord(SmcRecord& record, std::size_t offset, std::uint32_t value) {
  for (std::size_t index = 0; index < 4; ++index) {
    record[offset + index] = static_cast<std::uint8_t>(value >> (8 * index));
  }
}

std::uint32_t wordAt(std::span<const std::uint8_t> bytes, std::size_t offset) {
  std::uint32_t value = 0;
  for (std::size_t index = 0; index < 4; ++index) {
    value |= static_cast<std::uint32_t>(bytes[offset + index]) << (8 * index);
  }
  return value;
}

// Four characters, the first in the top byte.
std::uint32_t packed(std::string_view code) {
  std::uint32_t value = 0;
  for (const char character : code) value = value << 8 | static_cast<std::uint8_t>(character);
  return value;
}

std::optional<SmcRecord> call(SmcConnection& connection, const SmcRecord& request) {
  const SmcReply reply = connection.call(request);
  const bool succeeded = reply.returnCode == 0 && reply.size == reply.record.size() && reply.record[kResultOffset] == 0;
  return succeeded ? std::optional(reply.record) : std::nullopt;
}

std::optional<double> decode(std::uint32_t type, std::span<const std::uint8_t> bytes) {
  if (type == packed("sp78") && bytes.size() >= 2) {
    const auto fixed = static_cast<std::int16_t>(bytes[0] << 8 | bytes[1]);
    return fixed / 256.0;
  }
  if (type == packed("flt ") && bytes.size() >= 4) return std::bit_cast<float>(wordAt(bytes, 0));
  return std::nullopt;
}

std::optional<double> readKey(SmcConnection& connection, std::string_view key) {
  SmcRecord request{};
  putWord(request, kKeyOffset, packed(key));
  request[kCommandOffset] = kReadKeyInfo;
  const auto info = call(connection, request);
  if (!info) return std::nullopt;

  const std::uint32_t size = wordAt(*info, kDataSizeOffset);
  if (size == 0 || size > kMaxDataSize) return std::nullopt;
  putWord(request, kDataSizeOffset, size);
  request[kCommandOffset] = kReadBytes;
  const auto reply = call(connection, request);
  if (!reply) return std::nullopt;

  const auto value = decode(wordAt(*info, kDataTypeOffset), std::span(*reply).subspan(kDataOffset, size));
  return value && isPlausibleTemperature(*value) ? value : std::nullopt;
}

}  // namespace

TemperatureSampler::TemperatureSampler(SmcService& service) : connection_(service.open()) {
  if (!connection_) return;
  for (const std::string_view key : keysFor(service.cpuBrand())) {
    if (readKey(*connection_, key)) keys_.push_back(key);
  }
}

std::optional<double> TemperatureSampler::temperature() {
  HottestTemperature hottest;
  for (const std::string_view key : keys_) hottest.add(readKey(*connection_, key));
  return hottest.value();
}

}  // namespace nimbo
