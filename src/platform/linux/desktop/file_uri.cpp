// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/file_uri.h"

#include <fmt/format.h>

#include <string_view>

namespace nimbo {

std::string fileUri(const std::filesystem::path& file) {
  constexpr std::string_view kPlain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/";
  std::string uri = "file://";
  for (const char character : file.native()) {
    if (kPlain.find(character) != std::string_view::npos) {
      uri += character;
    } else {
      uri += fmt::format("%{:02X}", static_cast<unsigned char>(character));
    }
  }
  return uri;
}

}  // namespace nimbo
