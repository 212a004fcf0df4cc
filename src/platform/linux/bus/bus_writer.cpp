// SPDX-License-Identifier: MIT
#include "platform/linux/bus/bus_writer.h"

#include <array>

namespace nimbo {

void BusWriter::add(const std::vector<std::uint8_t>& bytes) {
  if (result_ >= 0) result_ = sd_bus_message_append_array(message_, SD_BUS_TYPE_BYTE, bytes.data(), bytes.size());
}

void BusWriter::add(const std::vector<std::int32_t>& numbers) {
  const std::size_t size = numbers.size() * sizeof(std::int32_t);
  if (result_ >= 0) result_ = sd_bus_message_append_array(message_, SD_BUS_TYPE_INT32, numbers.data(), size);
}

void BusWriter::add(const std::vector<std::string>& texts) {
  inside(SD_BUS_TYPE_ARRAY, "s", [&] {
    for (const std::string& text : texts) add(text);
  });
}

void BusWriter::add(const std::vector<std::vector<std::string>>& lists) {
  inside(SD_BUS_TYPE_ARRAY, "as", [&] {
    for (const auto& texts : lists) add(texts);
  });
}

void BusWriter::add(const BusVariant& value) {
  constexpr std::array kTypes{"b", "s", "aas"};
  static_assert(kTypes.size() == std::variant_size_v<BusVariant>);
  inside(SD_BUS_TYPE_VARIANT, kTypes[value.index()],
         [&] { std::visit([this](const auto& held) { add(held); }, value); });
}

}  // namespace nimbo
