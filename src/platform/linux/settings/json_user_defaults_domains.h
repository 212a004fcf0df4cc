// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

#include "platform/user_defaults.h"

namespace nimbo {

/// Domains as the files `<folder>/<name>.json`. One whose file exists but cannot be read is not replaced,
/// so that nothing stands in the way of its user correcting it.
class JsonUserDefaultsDomains final : public UserDefaultsDomains {
 public:
  explicit JsonUserDefaultsDomains(std::filesystem::path folder);

  [[nodiscard]] std::optional<nlohmann::json> persistentDomain(std::string_view name) const override;
  [[nodiscard]] bool setPersistentDomain(std::string_view name, const nlohmann::json& values) override;
  void removePersistentDomain(std::string_view name) override;

 private:
  std::filesystem::path folder_;
};

}  // namespace nimbo
