// SPDX-License-Identifier: MIT
#include "platform/linux/http/curl/certificate_store.h"

#include <filesystem>
#include <string_view>
#include <system_error>

namespace nimbo {
namespace {

// "1d3472b9.0", as openssl-rehash names them.
bool isHashedName(std::string_view name) {
  return name.size() == 10 && name.ends_with(".0") && name.find_first_not_of("0123456789abcdef") == name.find('.');
}

bool isHashed(const std::string& folder) {
  std::error_code error;
  std::filesystem::directory_iterator entries(folder, error);
  for (; !error && entries != std::filesystem::directory_iterator(); entries.increment(error)) {
    if (isHashedName(entries->path().filename().string())) return true;
  }
  return false;
}

}  // namespace

CertificateStore chooseStore(const CertificateStore& system, const CertificateStore& users) {
  CertificateStore store{users.file.empty() ? system.file : users.file,
                         users.folder.empty() ? system.folder : users.folder};
  if (users.file.empty() && !store.folder.empty() && isHashed(store.folder)) store.file.clear();
  return store;
}

}  // namespace nimbo
