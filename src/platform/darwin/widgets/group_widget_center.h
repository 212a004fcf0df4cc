// SPDX-License-Identifier: MIT
#pragma once

#include "platform/bundle.h"
#include "platform/widget_center.h"

namespace nimbo {

/// The containers of application groups, which the build's entitlements open, and the widgets of WidgetKit.
class GroupWidgetCenter final : public WidgetCenter {
 public:
  /// What WidgetKit needs is in the module "nimbo-timelines"; without it no timeline is reloaded. `modules` outlives
  /// this.
  explicit GroupWidgetCenter(ModuleLoader& modules) : modules_(modules) {}

  [[nodiscard]] std::optional<std::filesystem::path> container(const std::string& appGroup) const override;
  [[nodiscard]] bool writeAtomically(const std::filesystem::path& file, std::string_view contents) const override;
  void reloadTimelines(const std::string& kind) override;

 private:
  ModuleLoader& modules_;
};

}  // namespace nimbo
