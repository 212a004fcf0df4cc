// SPDX-License-Identifier: MIT
#include "platform/linux/settings/json_user_defaults_domains.h"

#include <utility>

#include "platform/linux/settings/json_domain_file.h"

namespace nimbo {

JsonUserDefaultsDomains::JsonUserDefaultsDomains(std::filesystem::path folder) : folder_(std::move(folder)) {}

std::optional<nlohmann::json> JsonUserDefaultsDomains::persistentDomain(std::string_view name) const {
  JsonDomainFile file(folder_, name);
  if (file.state() != JsonDomainFile::State::good) return std::nullopt;
  return file.values();
}

bool JsonUserDefaultsDomains::setPersistentDomain(std::string_view name, const nlohmann::json& values) {
  JsonDomainFile file(folder_, name);
  return file.state() != JsonDomainFile::State::malformed && file.replace(values);
}

void JsonUserDefaultsDomains::removePersistentDomain(std::string_view name) { JsonDomainFile(folder_, name).remove(); }

}  // namespace nimbo
