// SPDX-License-Identifier: MIT
#pragma once

#include <utility>

#include "platform/linux/bus/sd_bus_connection.h"
#include "platform/widget_center.h"

namespace nimbo {

/// Application groups as folders of the user's data folder, and news of them as a signal on the session
/// bus: "TimelinesReloaded" with the kind, of com.quellwerk.Nimbo.Widgets at /com/quellwerk/Nimbo.
class XdgWidgetCenter final : public WidgetCenter {
 public:
  /// `session` may be null: then nobody is told. `dataFolder` is $XDG_DATA_HOME.
  XdgWidgetCenter(sd_bus* session, std::filesystem::path dataFolder)
      : session_(session), dataFolder_(std::move(dataFolder)) {}

  /// None for a name that would lead elsewhere than into a folder of that name.
  [[nodiscard]] std::optional<std::filesystem::path> container(const std::string& appGroup) const override;
  /// A symbolic link in the file's place is left alone, which is a failure.
  [[nodiscard]] bool writeAtomically(const std::filesystem::path& file, std::string_view contents) const override;
  void reloadTimelines(const std::string& kind) override;

 private:
  sd_bus* const session_;
  const std::filesystem::path dataFolder_;
};

}  // namespace nimbo
