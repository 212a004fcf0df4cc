// SPDX-License-Identifier: MIT
#include "platform/linux/tray/dbus_menu_layout.h"

#include <algorithm>
#include <cstddef>

#include "base/utf8_text.h"

namespace nimbo {
namespace {

// Hosts take a single underscore as the mark of a mnemonic.
std::string labelText(const std::string& title) {
  std::string label;
  for (const char character : repairedUtf8(title)) {
    label += character;
    if (character == '_') label += '_';
  }
  return label;
}

std::vector<MenuProperty> rootProperties(const StatusMenu& menu) {
  return {{"children-display", std::string("submenu")}, {"label", labelText(menu.title)}};
}

std::vector<MenuProperty> entryProperties(const MenuEntry& entry) {
  if (entry.kind == MenuEntry::Kind::separator) return {{"type", std::string("separator")}};
  std::vector<MenuProperty> properties{{"label", labelText(entry.title)}, {"enabled", entry.enabled}};
  if (!entry.keyEquivalent.empty()) {
    properties.push_back({"shortcut", MenuShortcut{"Control", repairedUtf8(entry.keyEquivalent)}});
  }
  return properties;
}

/// Appends one value inside a variant.
struct ValueWriter {
  sd_bus_message* message;

  int operator()(bool value) const { return sd_bus_message_append(message, "v", "b", value ? 1 : 0); }
  int operator()(const std::string& value) const { return sd_bus_message_append(message, "v", "s", value.c_str()); }
  int operator()(const MenuShortcut& keys) const {
    int result = sd_bus_message_open_container(message, SD_BUS_TYPE_VARIANT, "aas");
    if (result >= 0) result = sd_bus_message_open_container(message, SD_BUS_TYPE_ARRAY, "as");
    if (result >= 0) result = sd_bus_message_open_container(message, SD_BUS_TYPE_ARRAY, "s");
    for (const std::string& key : keys) {
      if (result >= 0) result = sd_bus_message_append(message, "s", key.c_str());
    }
    for (int level = 0; level < 3 && result >= 0; ++level) result = sd_bus_message_close_container(message);
    return result;
  }
};

}  // namespace

bool sameLayout(const StatusMenu& a, const StatusMenu& b) {
  const auto same = [](const MenuEntry& x, const MenuEntry& y) {
    return x.kind == y.kind && x.title == y.title && x.enabled == y.enabled && x.keyEquivalent == y.keyEquivalent;
  };
  return a.title == b.title && std::equal(a.entries.begin(), a.entries.end(), b.entries.begin(), b.entries.end(), same);
}

std::vector<MenuProperty> menuProperties(const StatusMenu& menu, std::int32_t id,
                                         const std::vector<std::string>& names) {
  auto properties = id == 0 ? rootProperties(menu) : entryProperties(menu.entries[static_cast<std::size_t>(id - 1)]);
  if (!names.empty()) {
    std::erase_if(properties, [&names](const MenuProperty& property) {
      return std::find(names.begin(), names.end(), property.name) == names.end();
    });
  }
  return properties;
}

int appendValue(sd_bus_message* message, const MenuProperty& property) {
  return std::visit(ValueWriter{message}, property.value);
}

int appendProperties(sd_bus_message* message, const std::vector<MenuProperty>& properties) {
  int result = sd_bus_message_open_container(message, SD_BUS_TYPE_ARRAY, "{sv}");
  for (const MenuProperty& property : properties) {
    if (result >= 0) result = sd_bus_message_open_container(message, SD_BUS_TYPE_DICT_ENTRY, "sv");
    if (result >= 0) result = sd_bus_message_append(message, "s", property.name);
    if (result >= 0) result = appendValue(message, property);
    if (result >= 0) result = sd_bus_message_close_container(message);
  }
  return result >= 0 ? sd_bus_message_close_container(message) : result;
}

int appendLayout(sd_bus_message* message, const StatusMenu& menu, std::int32_t id, std::int32_t depth,
                 const std::vector<std::string>& names) {
  int result = sd_bus_message_open_container(message, SD_BUS_TYPE_STRUCT, "ia{sv}av");
  if (result >= 0) result = sd_bus_message_append(message, "i", id);
  if (result >= 0) result = appendProperties(message, menuProperties(menu, id, names));
  if (result >= 0) result = sd_bus_message_open_container(message, SD_BUS_TYPE_ARRAY, "v");
  const auto children = id == 0 && depth != 0 ? static_cast<std::int32_t>(menu.entries.size()) : 0;
  for (std::int32_t child = 1; child <= children; ++child) {
    if (result >= 0) result = sd_bus_message_open_container(message, SD_BUS_TYPE_VARIANT, "(ia{sv}av)");
    if (result >= 0) result = appendLayout(message, menu, child, 0, names);
    if (result >= 0) result = sd_bus_message_close_container(message);
  }
  if (result >= 0) result = sd_bus_message_close_container(message);
  return result >= 0 ? sd_bus_message_close_container(message) : result;
}

}  // namespace nimbo
