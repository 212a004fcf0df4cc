// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "platform/workspace.h"
#include "ui/settings/settings_window.h"
#include "ui/user_interface.h"

namespace nimbo {

// What the program and the process that shows its windows tell each other, one record at a time.

enum class WindowName { dashboard, settings };

/// Counts openings, alerts and what the user does. What comes back names it, because it may be about an earlier one.
using Serial = std::uint32_t;

struct SetAppearance {
  Appearance appearance = Appearance::light;
};
/// What a window is to show, once `handled` of what the user did with its controls has had its effect. One of an
/// earlier time is left out, because the user has gone on: another one follows.
template <class Content>
struct Show {
  Serial handled = 0;
  Content content;
};
struct Open {
  WindowName window = WindowName::dashboard;
  Serial serial = 0;
  WindowPlace place = {};
};
struct Close {
  WindowName window = WindowName::dashboard;
};
struct OpenAlert {
  Serial serial = 0;
  AlertContent content;
};
struct PresentAlert {
  Serial serial = 0;
};
struct CloseAlert {
  Serial serial = 0;
};
using RecordForWindows = std::variant<SetAppearance, Show<DashboardContent>, Show<SettingsWindowContent>, Open, Close,
                                      OpenAlert, PresentAlert, CloseAlert>;

/// The first that the windows say: which records they understand.
struct WindowsReady {
  int version = 0;
};
/// What the user did with a control.
struct Acted {
  WindowName window = WindowName::dashboard;
  Serial number = 0;  ///< from 1 on, in each window
  ControlEvent event;
  std::string shown;  ///< what the control, or the item of it that was chosen, said then
};
struct BecameKey {
  WindowName window = WindowName::dashboard;
};
struct Closed {
  WindowName window = WindowName::dashboard;
  Serial serial = 0;
  ClosedBy by = ClosedBy::other;
};
struct AlertAnswered {
  Serial serial = 0;
  std::optional<std::size_t> button;
};
struct MenuChosen {
  MenuRole role = MenuRole::separator;
};
using RecordFromWindows = std::variant<WindowsReady, Acted, BecameKey, Closed, AlertAnswered, MenuChosen>;

/// Changes with every change of a record. Both processes come from one build, but the one on the disk may be newer.
inline constexpr int kRecordVersion = 1;

// What a control of that identifier in `content` says to somebody who does this with it: a button's or a box's title,
// the item that is chosen, nothing for other controls. Absent when there is no such control that can be used.
[[nodiscard]] std::optional<std::string> wording(const DashboardContent& content, const ControlEvent& event);
[[nodiscard]] std::optional<std::string> wording(const SettingsWindowContent& content, const ControlEvent& event);

[[nodiscard]] std::string encode(const RecordForWindows& record);
[[nodiscard]] std::string encode(const RecordFromWindows& record);

// Absent for anything that `encode` cannot have made.
[[nodiscard]] std::optional<RecordForWindows> decodeForWindows(std::string_view text);
[[nodiscard]] std::optional<RecordFromWindows> decodeFromWindows(std::string_view text);

}  // namespace nimbo
