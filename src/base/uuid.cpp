// SPDX-License-Identifier: MIT
#include "base/uuid.h"

#include <cstdint>
#include <random>

namespace nimbo {

std::string makeUuid() {
  constexpr char kDigits[] = "0123456789ABCDEF";
  std::random_device device;
  std::uniform_int_distribution<unsigned> digit(0, 15);
  std::string text = "xxxxxxxx-xxxx-4xxx-yxxx-xxxxxxxxxxxx";
  for (char& character : text) {
    if (character == 'x') character = kDigits[digit(device)];
    if (character == 'y') character = kDigits[8 + digit(device) % 4];  // the variant of the RFC
  }
  return text;
}

}  // namespace nimbo
