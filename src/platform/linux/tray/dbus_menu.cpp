// SPDX-License-Identifier: MIT
#include "platform/linux/tray/dbus_menu.h"

#include <cstddef>
#include <span>
#include <string_view>
#include <utility>

#include "platform/linux/bus/sd_bus_calls.h"
#include "platform/linux/tray/dbus_menu_layout.h"

namespace nimbo {
namespace {

constexpr const char* kInterface = "com.canonical.dbusmenu";

int unknownId(sd_bus_error* error, std::int32_t id) {
  return sd_bus_error_setf(error, SD_BUS_ERROR_INVALID_ARGS, "The menu has no item %d.", id);
}

BusMessage replyTo(sd_bus_message* call) {
  sd_bus_message* reply = nullptr;
  sd_bus_message_new_method_return(call, &reply);
  return BusMessage(reply);
}

int send(const BusMessage& reply, int result) {
  return result < 0 ? result : sd_bus_send(nullptr, reply.get(), nullptr);
}

std::span<const std::int32_t> readIds(sd_bus_message* call) {
  const void* ids = nullptr;
  std::size_t bytes = 0;
  if (sd_bus_message_read_array(call, SD_BUS_TYPE_INT32, &ids, &bytes) < 0) return {};
  return {static_cast<const std::int32_t*>(ids), bytes / sizeof(std::int32_t)};
}

int appendIds(sd_bus_message* reply, const std::vector<std::int32_t>& ids) {
  return sd_bus_message_append_array(reply, SD_BUS_TYPE_INT32, ids.data(), ids.size() * sizeof(std::int32_t));
}

int versionProperty(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void*, sd_bus_error*) {
  return sd_bus_message_append(reply, "u", 3U);
}
int directionProperty(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void*, sd_bus_error*) {
  return sd_bus_message_append(reply, "s", "ltr");
}
int statusProperty(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void*, sd_bus_error*) {
  return sd_bus_message_append(reply, "s", "normal");
}
int themePathProperty(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void*, sd_bus_error*) {
  return sd_bus_message_append(reply, "as", 0);
}

}  // namespace

// Everybody on the bus belongs to the user; asking the bus about each caller's rights would block.
const sd_bus_vtable DbusMenu::kTable[] = {
    SD_BUS_VTABLE_START(SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("GetLayout", "iias", "u(ia{sv}av)", (busMethod<DbusMenu, &DbusMenu::getLayout>),
                  SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("GetGroupProperties", "aias", "a(ia{sv})", (busMethod<DbusMenu, &DbusMenu::getGroupProperties>),
                  SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("GetProperty", "is", "v", (busMethod<DbusMenu, &DbusMenu::getProperty>), SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("Event", "isvu", "", (busMethod<DbusMenu, &DbusMenu::event>), SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("EventGroup", "a(isvu)", "ai", (busMethod<DbusMenu, &DbusMenu::eventGroup>),
                  SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("AboutToShow", "i", "b", (busMethod<DbusMenu, &DbusMenu::aboutToShow>), SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("AboutToShowGroup", "ai", "aiai", (busMethod<DbusMenu, &DbusMenu::aboutToShowGroup>),
                  SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_PROPERTY("Version", "u", versionProperty, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("TextDirection", "s", directionProperty, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("Status", "s", statusProperty, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("IconThemePath", "as", themePathProperty, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_SIGNAL("ItemsPropertiesUpdated", "a(ia{sv})a(ias)", 0),
    SD_BUS_SIGNAL("LayoutUpdated", "ui", 0),
    SD_BUS_SIGNAL("ItemActivationRequested", "iu", 0),
    SD_BUS_VTABLE_END,
};

DbusMenu::DbusMenu(sd_bus* bus, DbusMenuHandlers handlers) : bus_(bus), handlers_(std::move(handlers)) {
  sd_bus_slot* slot = nullptr;
  if (bus != nullptr) sd_bus_add_object_vtable(bus, &slot, kPath, kInterface, kTable, this);
  object_.reset(slot);
}

bool DbusMenu::contains(std::int32_t id) const {
  return id >= 0 && static_cast<std::size_t>(id) <= menu_.entries.size();
}

/// True when hosts would see another menu than before.
bool DbusMenu::replace(StatusMenu menu) {
  const bool differs = revision_ == 0 || !sameLayout(menu, menu_);
  menu_ = std::move(menu);
  if (differs) ++revision_;
  return differs;
}

bool DbusMenu::refreshIfClosed() { return !open_ && replace(handlers_.menu()); }

bool DbusMenu::prepareToShow() {
  const bool shownBefore = revision_ > 0;
  const bool differs = refreshIfClosed();
  if (differs && shownBefore) emitLayoutUpdated();
  return differs;
}

void DbusMenu::emitLayoutUpdated() { sd_bus_emit_signal(bus_, kPath, kInterface, "LayoutUpdated", "ui", revision_, 0); }

int DbusMenu::getLayout(sd_bus_message* call, sd_bus_error* error) {
  std::int32_t id = 0;
  std::int32_t depth = 0;
  std::vector<std::string> names;
  if (const int result = sd_bus_message_read(call, "ii", &id, &depth); result < 0) return result;
  if (!readStrings(call, names)) return -EINVAL;
  refreshIfClosed();
  if (!contains(id)) return unknownId(error, id);
  const BusMessage reply = replyTo(call);
  int result = sd_bus_message_append(reply.get(), "u", revision_);
  if (result >= 0) result = appendLayout(reply.get(), menu_, id, depth, names);
  return send(reply, result);
}

int DbusMenu::getGroupProperties(sd_bus_message* call, sd_bus_error* /*error*/) {
  const auto wanted = readIds(call);
  std::vector<std::int32_t> ids(wanted.begin(), wanted.end());
  std::vector<std::string> names;
  if (!readStrings(call, names)) return -EINVAL;
  if (revision_ == 0) refreshIfClosed();
  if (ids.empty()) {
    for (std::int32_t id = 0; contains(id); ++id) ids.push_back(id);
  }
  const BusMessage reply = replyTo(call);
  int result = sd_bus_message_open_container(reply.get(), SD_BUS_TYPE_ARRAY, "(ia{sv})");
  for (const std::int32_t id : ids) {
    if (!contains(id)) continue;
    if (result >= 0) result = sd_bus_message_open_container(reply.get(), SD_BUS_TYPE_STRUCT, "ia{sv}");
    if (result >= 0) result = sd_bus_message_append(reply.get(), "i", id);
    if (result >= 0) result = appendProperties(reply.get(), menuProperties(menu_, id, names));
    if (result >= 0) result = sd_bus_message_close_container(reply.get());
  }
  if (result >= 0) result = sd_bus_message_close_container(reply.get());
  return send(reply, result);
}

int DbusMenu::getProperty(sd_bus_message* call, sd_bus_error* error) {
  std::int32_t id = 0;
  const char* name = nullptr;
  if (const int result = sd_bus_message_read(call, "is", &id, &name); result < 0) return result;
  if (revision_ == 0) refreshIfClosed();
  if (!contains(id)) return unknownId(error, id);
  const auto found = menuProperties(menu_, id, {name});
  if (found.empty()) return sd_bus_error_setf(error, SD_BUS_ERROR_INVALID_ARGS, "Item %d has no such property.", id);
  const BusMessage reply = replyTo(call);
  return send(reply, appendValue(reply.get(), found.front()));
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
  const bool shownBefore = revision_ > 0;
  if (replace(handlers_.willOpen()) && shownBefore) emitLayoutUpdated();
}

void DbusMenu::closed(Callbacks& afterwards) {
  if (!open_) return;
  open_ = false;
  opener_.reset();
  afterwards.push_back(handlers_.didClose);
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
  const BusMessage reply = replyTo(call);
  result = send(reply, appendIds(reply.get(), unknown));
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
  const BusMessage reply = replyTo(call);
  int result = appendIds(reply.get(), updates);
  if (result >= 0) result = appendIds(reply.get(), unknown);
  return send(reply, result);
}

}  // namespace nimbo
