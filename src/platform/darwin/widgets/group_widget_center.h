// SPDX-License-Identifier: MIT
#pragma once

#include "platform/widget_center.h"

namespace nimbo {

/// The containers of application groups, which the build's entitlements open, and the widgets of WidgetKit.
class GroupWidgetCenter final : public WidgetCenter {
 public:
  [[nodiscard]] std::optional<std::filesystem::path> container(const std::string& appGroup) const override;
  [[nodiscard]] bool writeAtomically(const std::filesystem::path& file, std::string_view contents) const override;
  void reloadTimelines(const std::string& kind) override;
};

}  // namespace nimbo
