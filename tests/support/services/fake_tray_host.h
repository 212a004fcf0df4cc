// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "support/services/bus_peer.h"

namespace nimbo {

/// A panel's tray: owns the watcher's name, records who registers and what they signal, and reads
/// items and menus as panels do. Destroying it is the panel's end.
class FakeTrayHost {
 public:
  struct Signal {
    std::string member;
    std::vector<std::string> arguments;  ///< texts; properties that changed, of a menu with identifiers and values
    bool operator==(const Signal&) const = default;
  };
  struct Pixmap {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> bytes;
  };
  struct ToolTip {
    std::string icon;
    std::string title;
    std::string subtitle;
  };
  struct MenuItem {
    std::int32_t id = -1;
    std::map<std::string, std::string> properties;  ///< values as text
    std::vector<MenuItem> children;
  };
  struct Layout {
    std::uint32_t revision = 0;
    MenuItem root;
  };

  static constexpr const char* kItemInterface = "org.kde.StatusNotifierItem";
  static constexpr const char* kMenuInterface = "com.canonical.dbusmenu";

  FakeTrayHost(BusLoop& loop, const std::string& address) : peer(loop, address) {
    sd_bus_slot* slot = nullptr;
    sd_bus_add_object_vtable(peer.bus(), &slot, "/StatusNotifierWatcher", "org.kde.StatusNotifierWatcher", kTable,
                             this);
    object_.reset(slot);
    const auto record = [this](sd_bus_message* signal) { recordSignal(signal); };
    itemSignals_ = addMatch(peer.bus(), "type='signal',path='/StatusNotifierItem'", record);
    menuSignals_ = addMatch(peer.bus(), "type='signal',path='/MenuBar'", record);
    peer.own("org.kde.StatusNotifierWatcher");
  }

  /// Waits until so many registrations have come in all.
  [[nodiscard]] bool waitForItems(std::size_t count) {
    return peer.loop().runUntil([this, count] { return registered.size() >= count; });
  }

  BusMessage callItem(const std::string& item, const char* member, const BusPeer::Fill& fill = {}) const {
    return peer.call(item, "/StatusNotifierItem", kItemInterface, member, fill);
  }

  BusMessage callMenu(const std::string& item, const char* member, const BusPeer::Fill& fill = {}) const {
    return peer.call(item, "/MenuBar", kMenuInterface, member, fill);
  }

  /// The variant with the property's value; an error reply when there is none.
  BusMessage property(const std::string& item, const char* name) const {
    return peer.call(item, "/StatusNotifierItem", "org.freedesktop.DBus.Properties", "Get",
                     [name](sd_bus_message* call) { sd_bus_message_append(call, "ss", kItemInterface, name); });
  }

  /// A simple property's value as text; "(none)" when there is none.
  std::string text(const std::string& item, const char* name) const {
    const BusMessage reply = property(item, name);
    return succeeded(reply) ? variantText(reply.get()) : "(none)";
  }

  /// The names of all properties, as a host that reads them in one go gets them.
  std::vector<std::string> propertyNames(const std::string& item) const {
    const BusMessage reply = peer.call(item, "/StatusNotifierItem", "org.freedesktop.DBus.Properties", "GetAll",
                                       [](sd_bus_message* call) { sd_bus_message_append(call, "s", kItemInterface); });
    std::vector<std::string> names;
    if (succeeded(reply)) {
      for (const auto& [name, value] : readProperties(reply.get())) names.push_back(name);
    }
    return names;
  }

  std::vector<Pixmap> pixmaps(const std::string& item) const {
    const BusMessage reply = property(item, "IconPixmap");
    std::vector<Pixmap> pixmaps;
    if (!succeeded(reply)) return pixmaps;
    sd_bus_message_enter_container(reply.get(), 'v', "a(iiay)");
    sd_bus_message_enter_container(reply.get(), 'a', "(iiay)");
    while (sd_bus_message_enter_container(reply.get(), 'r', "iiay") > 0) {
      Pixmap& pixmap = pixmaps.emplace_back();
      const void* bytes = nullptr;
      std::size_t size = 0;
      sd_bus_message_read(reply.get(), "ii", &pixmap.width, &pixmap.height);
      sd_bus_message_read_array(reply.get(), 'y', &bytes, &size);
      const auto* first = static_cast<const std::uint8_t*>(bytes);
      pixmap.bytes.assign(first, first + size);
      sd_bus_message_exit_container(reply.get());
    }
    return pixmaps;
  }

  ToolTip toolTip(const std::string& item) const {
    const BusMessage reply = property(item, "ToolTip");
    const char* icon = "";
    const char* title = "(none)";
    const char* subtitle = "";
    if (succeeded(reply)) {
      sd_bus_message_enter_container(reply.get(), 'v', "(sa(iiay)ss)");
      sd_bus_message_enter_container(reply.get(), 'r', "sa(iiay)ss");
      sd_bus_message_read(reply.get(), "s", &icon);
      sd_bus_message_skip(reply.get(), "a(iiay)");
      sd_bus_message_read(reply.get(), "ss", &title, &subtitle);
    }
    return {icon, title, subtitle};
  }

  BusMessage getLayout(const std::string& item, std::int32_t id, std::int32_t depth,
                       const std::vector<std::string>& names = {}) const {
    return callMenu(item, "GetLayout", [&](sd_bus_message* call) {
      sd_bus_message_append(call, "ii", id, depth);
      appendStrings(call, names);
    });
  }

  Layout layout(const std::string& item, std::int32_t id = 0, std::int32_t depth = -1,
                const std::vector<std::string>& names = {}) const {
    const BusMessage reply = getLayout(item, id, depth, names);
    Layout layout;
    if (!succeeded(reply)) return layout;
    sd_bus_message_read(reply.get(), "u", &layout.revision);
    layout.root = readMenuItem(reply.get());
    return layout;
  }

  BusMessage menuEvent(const std::string& item, std::int32_t id, const char* type) const {
    return callMenu(item, "Event",
                    [id, type](sd_bus_message* call) { sd_bus_message_append(call, "isvu", id, type, "i", 0, 0U); });
  }

  /// What AboutToShow says of a needed update; an error counts as no.
  bool aboutToShow(const std::string& item, std::int32_t id = 0) const {
    const BusMessage reply =
        callMenu(item, "AboutToShow", [id](sd_bus_message* call) { sd_bus_message_append(call, "i", id); });
    int needed = 0;
    if (succeeded(reply)) sd_bus_message_read(reply.get(), "b", &needed);
    return needed != 0;
  }

  /// Signals of `item` so far, all of them, and forgets them.
  std::vector<Signal> takeSignals(const std::string& item) {
    peer.settle(item);
    return std::move(signals_[peer.ownerOf(item)]);
  }

  static void appendStrings(sd_bus_message* message, const std::vector<std::string>& texts) {
    sd_bus_message_open_container(message, 'a', "s");
    for (const std::string& each : texts) sd_bus_message_append(message, "s", each.c_str());
    sd_bus_message_close_container(message);
  }

  static std::map<std::string, std::string> readProperties(sd_bus_message* message) {
    std::map<std::string, std::string> properties;
    sd_bus_message_enter_container(message, 'a', "{sv}");
    while (sd_bus_message_enter_container(message, 'e', "sv") > 0) {
      const char* name = nullptr;
      sd_bus_message_read(message, "s", &name);
      const std::string key = name;
      properties[key] = variantText(message);
      sd_bus_message_exit_container(message);
    }
    sd_bus_message_exit_container(message);
    return properties;
  }

  static std::string variantText(sd_bus_message* message) {
    const char* contents = nullptr;
    sd_bus_message_peek_type(message, nullptr, &contents);
    const std::string type = contents;
    if (type == "aas") {
      std::string keys;
      sd_bus_message_enter_container(message, 'v', "aas");
      sd_bus_message_enter_container(message, 'a', "as");
      std::vector<std::string> parts;
      while (readStrings(message, parts)) {
        for (const std::string& part : parts) keys += (keys.empty() ? "" : "+") + part;
        parts.clear();
        if (sd_bus_message_at_end(message, 0) > 0) break;
      }
      sd_bus_message_exit_container(message);
      sd_bus_message_exit_container(message);
      return keys;
    }
    if (type == "s" || type == "o") {
      const char* text = nullptr;
      sd_bus_message_read(message, "v", type.c_str(), &text);
      return text;
    }
    std::int32_t number = 0;
    if (type == "b" || type == "i" || type == "u") {
      sd_bus_message_read(message, "v", type.c_str(), &number);
      if (type == "b") return number != 0 ? "true" : "false";
      return std::to_string(number);
    }
    sd_bus_message_skip(message, "v");
    return "(" + type + ")";
  }

  BusPeer peer;
  std::vector<std::string> registered;  ///< the items' unique names

 private:
  static int onRegister(sd_bus_message* call, void* self, sd_bus_error* /*error*/) {
    auto& host = *static_cast<FakeTrayHost*>(self);
    const char* service = nullptr;
    sd_bus_message_read(call, "s", &service);
    // A path stands for the sender.
    host.registered.emplace_back(*service == '/' ? sd_bus_message_get_sender(call) : service);
    return sd_bus_reply_method_return(call, "");
  }

  static constexpr sd_bus_vtable kTable[] = {
      SD_BUS_VTABLE_START(0),
      SD_BUS_METHOD("RegisterStatusNotifierItem", "s", "", onRegister, SD_BUS_VTABLE_UNPRIVILEGED),
      SD_BUS_VTABLE_END,
  };

  static MenuItem readMenuItem(sd_bus_message* message) {
    MenuItem item;
    sd_bus_message_enter_container(message, 'r', "ia{sv}av");
    sd_bus_message_read(message, "i", &item.id);
    item.properties = readProperties(message);
    sd_bus_message_enter_container(message, 'a', "v");
    while (sd_bus_message_enter_container(message, 'v', "(ia{sv}av)") > 0) {
      item.children.push_back(readMenuItem(message));
      sd_bus_message_exit_container(message);
    }
    sd_bus_message_exit_container(message);
    sd_bus_message_exit_container(message);
    return item;
  }

  void recordSignal(sd_bus_message* message) {
    Signal signal{sd_bus_message_get_member(message), {}};
    if (signal.member == "PropertiesChanged") {
      sd_bus_message_skip(message, "s");
      for (const auto& [name, value] : readProperties(message)) signal.arguments.push_back(name);
      // Names of properties that are merely marked as out of date come after the values.
      std::vector<std::string> invalidated;
      if (readStrings(message, invalidated)) {
        for (const std::string& name : invalidated) signal.arguments.push_back(name);
      }
    } else if (signal.member == "ItemsPropertiesUpdated") {
      sd_bus_message_enter_container(message, 'a', "(ia{sv})");
      while (sd_bus_message_enter_container(message, 'r', "ia{sv}") > 0) {
        int id = 0;
        sd_bus_message_read(message, "i", &id);
        signal.arguments.push_back(std::to_string(id));
        for (const auto& [name, value] : readProperties(message)) signal.arguments.push_back(name + "=" + value);
        sd_bus_message_exit_container(message);
      }
    } else {
      char type = 0;
      const char* text = nullptr;
      while (sd_bus_message_peek_type(message, &type, nullptr) > 0 && type == 's' &&
             sd_bus_message_read_basic(message, 's', &text) > 0) {
        signal.arguments.emplace_back(text);
      }
    }
    signals_[sd_bus_message_get_sender(message)].push_back(std::move(signal));
  }

  BusSlot object_;
  BusSlot itemSignals_;
  BusSlot menuSignals_;
  std::map<std::string, std::vector<Signal>> signals_;  // by unique name
};

}  // namespace nimbo
