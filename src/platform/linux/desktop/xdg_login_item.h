// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>

#include "platform/login_item.h"

namespace nimbo {

/// An entry in the user's autostart folder, by freedesktop.org's rules for autostart. A system-wide entry
/// of the same name is not looked for: this program installs none. Nobody has to approve an entry, so
/// that state never occurs. Main thread only.
class XdgLoginItem final : public LoginItem {
 public:
  struct Setup {
    std::filesystem::path configFolder;  ///< of the user's base folders
    /// What log-in starts, whole: this executable, or the one file that it was unpacked from.
    std::filesystem::path program;
    std::string desktop;     ///< value of XDG_CURRENT_DESKTOP
    std::string searchPath;  ///< value of PATH
  };

  explicit XdgLoginItem(Setup setup);

  /// An entry counts when this desktop would start what it names.
  [[nodiscard]] LoginItemStatus status() const override;
  /// A link in its place is replaced, not followed: what it leads to is somebody else's.
  [[nodiscard]] Result<void, LoginItemError> registerItem() override;
  [[nodiscard]] Result<void, LoginItemError> unregisterItem() override;
  /// Does nothing; there is nothing to allow.
  void openSystemSettings() override {}

 private:
  const Setup setup_;
  const std::filesystem::path file_;
};

}  // namespace nimbo
