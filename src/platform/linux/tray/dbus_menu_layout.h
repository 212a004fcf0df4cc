// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "platform/linux/bus/sd_bus_handles.h"
#include "platform/status_bar.h"

// How com.canonical.dbusmenu writes a menu: item 0 is the menu itself, its entries are 1, 2, 3, …
namespace nimbo {

/// The keys of a shortcut, such as "Control" and ",".
using MenuShortcut = std::vector<std::string>;

struct MenuProperty {
  const char* name;
  std::variant<bool, std::string, MenuShortcut> value;
};

/// Whether hosts would show the same; actions are not compared.
[[nodiscard]] bool sameLayout(const StatusMenu& a, const StatusMenu& b);

/// The properties of a valid item; only those named, or all when none is named.
[[nodiscard]] std::vector<MenuProperty> menuProperties(const StatusMenu& menu, std::int32_t id,
                                                       const std::vector<std::string>& names);

// Append to a message; negative error codes as sd-bus gives them.
[[nodiscard]] int appendValue(sd_bus_message* message, const MenuProperty& property);                      ///< "v"
[[nodiscard]] int appendProperties(sd_bus_message* message, const std::vector<MenuProperty>& properties);  ///< "a{sv}"

/// "(ia{sv}av)": the item and, unless `depth` is 0, what is in it.
[[nodiscard]] int appendLayout(sd_bus_message* message, const StatusMenu& menu, std::int32_t id, std::int32_t depth,
                               const std::vector<std::string>& names);

}  // namespace nimbo
