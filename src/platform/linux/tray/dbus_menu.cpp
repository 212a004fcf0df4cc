// SPDX-License-Identifier: MIT
#include "platform/linux/tray/dbus_menu.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>

#include "base/text.h"
#include "platform/linux/bus/sd_bus_calls.h"

namespace nimbo {
namespace {

constexpr const char* kMenuInterface = "com.canonical.dbusmenu";

int unknownId(sd_bus_error* error, std::int32_t id) {
  return sd_bus_error_setf(error, SD_BUS_ERROR_INVALID_ARGS, "The menu has no item %d.", id);
}

/// Sends the answer to a call; `write` puts everything into it.
int answer(sd_bus_message* call, const std::function<void(BusWriter& reply)>& write) {
  BusMessage message;
  if (const int result = sd_bus_message_new_method_return(call, message.out()); result < 0) return result;
  BusWriter reply(message.get());
  write(reply);
  return reply.result() < 0 ? reply.result() : sd_bus_send(nullptr, message.get(), nullptr);
}

std::vector<std::int32_t> readIds(sd_bus_message* call) {
  const void* ids = nullptr;
  std::size_t bytes = 0;
  if (sd_bus_message_read_array(call, SD_BUS_TYPE_INT32, &ids, &bytes) < 0) return {};
  const auto* const first = static_cast<const std::int32_t*>(ids);
  return {first, first + bytes / sizeof(std::int32_t)};
}

struct Property {
  const char* name;
  BusVariant value;
};
using Properties = std::vector<Property>;

// Hosts take a single underscore as the mark of a mnemonic.
std::string labelText(const std::string& title) { return replacedCharacters(repairedUtf8(title), {{'_', "__"}}); }

/// Item 0 is the menu itself, its entries are 1, 2, 3, …
Properties allProperties(const StatusMenu& menu, std::int32_t id) {
  if (id == 0) return {{"children-display", "submenu"}, {"label", labelText(menu.title)}};
  const MenuEntry& entry = menu.entries[static_cast<std::size_t>(id - 1)];
  if (entry.kind == MenuEntry::Kind::separator) return {{"type", "separator"}};
  Properties properties{{"label", labelText(entry.title)}, {"enabled", entry.enabled}};
  if (!entry.keyEquivalent.empty()) {
    properties.push_back(
        {"shortcut", std::vector<std::vector<std::string>>{{"Control", repairedUtf8(entry.keyEquivalent)}}});
  }
  return properties;
}

/// Of a valid item only those named, or all when none is named.
Properties properties(const StatusMenu& menu, std::int32_t id, const std::vector<std::string>& names) {
  Properties found = allProperties(menu, id);
  std::erase_if(found, [&names](const Property& property) {
    return !names.empty() && std::find(names.begin(), names.end(), property.name) == names.end();
  });
  return found;
}

void write(BusWriter& message, const Properties& properties) {
  message.inside(SD_BUS_TYPE_ARRAY, "{sv}", [&] {
    for (const Property& property : properties) {
      message.inside(SD_BUS_TYPE_DICT_ENTRY, "sv", [&] {
        message.add(property.name);
        message.add(property.value);
      });
    }
  });
}

/// "(ia{sv}av)": the item and, unless `depth` is 0, what is in it.
void writeLayout(BusWriter& message, const StatusMenu& menu, std::int32_t id, std::int32_t depth,
                 const std::vector<std::string>& names) {
  message.inside(SD_BUS_TYPE_STRUCT, "ia{sv}av", [&] {
    message.add(id);
    write(message, properties(menu, id, names));
    message.inside(SD_BUS_TYPE_ARRAY, "v", [&] {
      const auto children = id == 0 && depth != 0 ? static_cast<std::int32_t>(menu.entries.size()) : 0;
      for (std::int32_t child = 1; child <= children; ++child) {
        message.inside(SD_BUS_TYPE_VARIANT, "(ia{sv}av)", [&] { writeLayout(message, menu, child, 0, names); });
      }
    });
  });
}

// Whether hosts would show the same; actions are not compared.

bool sameEntry(const MenuEntry& a, const MenuEntry& b) {
  return a.kind == b.kind && a.title == b.title && a.enabled == b.enabled && a.keyEquivalent == b.keyEquivalent;
}

bool sameLayout(const StatusMenu& a, const StatusMenu& b) {
  return a.title == b.title && std::ranges::equal(a.entries, b.entries, sameEntry);
}

// Everybody on the bus belongs to the user; asking the bus about each caller's rights would block.
constexpr auto kOpen = SD_BUS_VTABLE_UNPRIVILEGED;
constexpr auto kConst = SD_BUS_VTABLE_PROPERTY_CONST;

}  // namespace

const sd_bus_vtable DbusMenu::kTable[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD("GetLayout", "iias", "u(ia{sv}av)", bus_table::method<&DbusMenu::getLayout>, kOpen),
    SD_BUS_METHOD("GetGroupProperties", "aias", "a(ia{sv})", bus_table::method<&DbusMenu::getGroupProperties>, kOpen),
    SD_BUS_METHOD("GetProperty", "is", "v", bus_table::method<&DbusMenu::getProperty>, kOpen),
    SD_BUS_METHOD("Event", "isvu", "", bus_table::method<&DbusMenu::event>, kOpen),
    SD_BUS_METHOD("EventGroup", "a(isvu)", "ai", bus_table::method<&DbusMenu::eventGroup>, kOpen),
    SD_BUS_METHOD("AboutToShow", "i", "b", bus_table::method<&DbusMenu::aboutToShow>, kOpen),
    SD_BUS_METHOD("AboutToShowGroup", "ai", "aiai", bus_table::method<&DbusMenu::aboutToShowGroup>, kOpen),
    SD_BUS_PROPERTY("Version", "u", bus_table::property<[] { return 3U; }>, 0, kConst),
    SD_BUS_PROPERTY("TextDirection", "s", bus_table::property<[] { return "ltr"; }>, 0, kConst),
    SD_BUS_PROPERTY("Status", "s", bus_table::property<[] { return "normal"; }>, 0, kConst),
    SD_BUS_PROPERTY("IconThemePath", "as", bus_table::property<[] { return std::vector<std::string>(); }>, 0, kConst),
    SD_BUS_SIGNAL("ItemsPropertiesUpdated", "a(ia{sv})a(ias)", 0),
    SD_BUS_SIGNAL("LayoutUpdated", "ui", 0),
    SD_BUS_SIGNAL("ItemActivationRequested", "iu", 0),
    SD_BUS_VTABLE_END,
};

DbusMenu::DbusMenu(sd_bus* bus, StatusItemHandlers handlers) : bus_(bus), handlers_(std::move(handlers)) {
  object_ = addObject(bus, kPath, kMenuInterface, kTable, this);
}

/// True when hosts would see another menu than before.
bool DbusMenu::replace(StatusMenu menu) {
  const StatusMenu before = std::exchange(menu_, std::move(menu));
  const bool shownBefore = revision_ > 0;
  const bool differs = !shownBefore || !sameLayout(menu_, before);
  if (differs) ++revision_;
  if (differs && shownBefore) tellProperties(before);
  return differs;
}

/// GNOME's tray keeps an entry's label until it is told of another one, whatever it reads in a layout.
void DbusMenu::tellProperties(const StatusMenu& before) {
  BusMessage signal;
  if (sd_bus_message_new_signal(bus_, signal.out(), kPath, kMenuInterface, "ItemsPropertiesUpdated") < 0) return;
  BusWriter updated(signal.get());
  updated.inside(SD_BUS_TYPE_ARRAY, "(ia{sv})", [&] {
    const std::size_t count = std::min(before.entries.size(), menu_.entries.size());
    for (std::size_t index = 0; index < count; ++index) {
      if (sameEntry(before.entries[index], menu_.entries[index])) continue;
      const auto id = static_cast<std::int32_t>(index + 1);
      updated.inside(SD_BUS_TYPE_STRUCT, "ia{sv}", [&] {
        updated.add(id);
        write(updated, allProperties(menu_, id));
      });
    }
  });
  updated.inside(SD_BUS_TYPE_ARRAY, "(ias)", [] {});
  sd_bus_send(bus_, signal.get(), nullptr);
}

/// The same, and tells hosts that have seen the menu before.
bool DbusMenu::replaceAndTell(StatusMenu menu) {
  const bool shownBefore = revision_ > 0;
  const bool differs = replace(std::move(menu));
  if (differs && shownBefore) sd_bus_emit_signal(bus_, kPath, kMenuInterface, "LayoutUpdated", "ui", revision_, 0);
  return differs;
}

int DbusMenu::getLayout(sd_bus_message* call, sd_bus_error* error) {
  std::int32_t id = 0;
  std::int32_t depth = 0;
  std::vector<std::string> names;
  if (const int result = sd_bus_message_read(call, "ii", &id, &depth); result < 0) return result;
  if (!readStrings(call, names)) return -EINVAL;
  refreshIfClosed();
  if (!contains(id)) return unknownId(error, id);
  return answer(call, [&](BusWriter& reply) {
    reply.add(revision_);
    writeLayout(reply, menu_, id, depth, names);
  });
}

int DbusMenu::getGroupProperties(sd_bus_message* call, sd_bus_error* /*error*/) {
  std::vector<std::int32_t> ids = readIds(call);
  std::vector<std::string> names;
  if (!readStrings(call, names)) return -EINVAL;
  if (revision_ == 0) refreshIfClosed();
  if (ids.empty()) {
    for (std::int32_t id = 0; contains(id); ++id) ids.push_back(id);
  }
  std::erase_if(ids, [this](std::int32_t id) { return !contains(id); });
  return answer(call, [&](BusWriter& reply) {
    reply.inside(SD_BUS_TYPE_ARRAY, "(ia{sv})", [&] {
      for (const std::int32_t id : ids) {
        reply.inside(SD_BUS_TYPE_STRUCT, "ia{sv}", [&] {
          reply.add(id);
          write(reply, properties(menu_, id, names));
        });
      }
    });
  });
}

int DbusMenu::getProperty(sd_bus_message* call, sd_bus_error* error) {
  std::int32_t id = 0;
  const char* name = nullptr;
  if (const int result = sd_bus_message_read(call, "is", &id, &name); result < 0) return result;
  if (revision_ == 0) refreshIfClosed();
  if (!contains(id)) return unknownId(error, id);
  const auto found = properties(menu_, id, {name});
  if (found.empty()) return sd_bus_error_setf(error, SD_BUS_ERROR_INVALID_ARGS, "Item %d has no such property.", id);
  return answer(call, [&found](BusWriter& reply) { reply.add(found.front().value); });
}

void DbusMenu::opened(const char* sender) {
  if (open_) return;
  open_ = true;
  if (sender != nullptr) {
    opener_.emplace(bus_, sender, [this](const std::string& owner) {
      if (!owner.empty()) return;
      Callbacks afterwards;
      closed(afterwards);
      for (const auto& callback : afterwards) callback();
    });
  }
  replaceAndTell(handlers_.menuWillOpen());
}

void DbusMenu::closed(Callbacks& afterwards) {
  if (!open_) return;
  open_ = false;
  opener_.reset();
  afterwards.push_back(handlers_.menuDidClose);
}

/// Reads one "isvu" and takes note of it; false when there is no item `id`. What the user's choice
/// does is left for `afterwards`: it may take long, and it may destroy this menu.
bool DbusMenu::readEvent(sd_bus_message* call, Callbacks& afterwards, std::int32_t& id) {
  const char* type = nullptr;
  if (sd_bus_message_read(call, "is", &id, &type) < 0 || sd_bus_message_skip(call, "vu") < 0 || !contains(id)) {
    return false;
  }
  const std::string_view event = type;
  if (id == 0) {
    if (event == "opened") opened(sd_bus_message_get_sender(call));
    if (event == "closed") closed(afterwards);
  } else if (event == "clicked") {
    const MenuEntry& entry = menu_.entries[static_cast<std::size_t>(id - 1)];
    if (entry.kind != MenuEntry::Kind::action || !entry.enabled) return true;
    // A choice ends the menu, and not every host says so, or says so first.
    closed(afterwards);
    if (entry.action) afterwards.push_back(entry.action);
  }
  return true;
}

int DbusMenu::event(sd_bus_message* call, sd_bus_error* error) {
  Callbacks afterwards;
  std::int32_t id = 0;
  if (revision_ == 0) refreshIfClosed();
  if (!readEvent(call, afterwards, id)) return unknownId(error, id);
  const int result = sd_bus_reply_method_return(call, "");
  for (const auto& callback : afterwards) callback();
  return result;
}

int DbusMenu::eventGroup(sd_bus_message* call, sd_bus_error* error) {
  Callbacks afterwards;
  std::vector<std::int32_t> unknown;
  std::size_t count = 0;
  if (revision_ == 0) refreshIfClosed();
  int result = sd_bus_message_enter_container(call, SD_BUS_TYPE_ARRAY, "(isvu)");
  while (result >= 0 && (result = sd_bus_message_enter_container(call, SD_BUS_TYPE_STRUCT, "isvu")) > 0) {
    std::int32_t id = 0;
    if (!readEvent(call, afterwards, id)) unknown.push_back(id);
    ++count;
    result = sd_bus_message_exit_container(call);
  }
  if (result < 0) return result;
  if (count > 0 && unknown.size() == count) return unknownId(error, unknown.front());
  result = answer(call, [&unknown](BusWriter& reply) { reply.add(unknown); });
  for (const auto& callback : afterwards) callback();
  return result;
}

int DbusMenu::aboutToShow(sd_bus_message* call, sd_bus_error* error) {
  std::int32_t id = 0;
  if (const int result = sd_bus_message_read(call, "i", &id); result < 0) return result;
  const bool needsUpdate = id == 0 && prepareToShow();
  if (!contains(id)) return unknownId(error, id);
  return sd_bus_reply_method_return(call, "b", needsUpdate ? 1 : 0);
}

int DbusMenu::aboutToShowGroup(sd_bus_message* call, sd_bus_error* /*error*/) {
  std::vector<std::int32_t> updates;
  std::vector<std::int32_t> unknown;
  for (const std::int32_t id : readIds(call)) {
    if (id == 0 && prepareToShow()) updates.push_back(id);
    if (!contains(id)) unknown.push_back(id);
  }
  return answer(call, [&](BusWriter& reply) {
    reply.add(updates);
    reply.add(unknown);
  });
}

}  // namespace nimbo
