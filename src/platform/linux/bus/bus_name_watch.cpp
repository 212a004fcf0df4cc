// SPDX-License-Identifier: MIT
#include "platform/linux/bus/bus_name_watch.h"

#include <cerrno>
#include <utility>

#include "platform/linux/bus/sd_bus_calls.h"

namespace nimbo {

// The bus handles the match before the question, so no change can fall between the two.
BusNameWatch::BusNameWatch(sd_bus* bus, const std::string& name, std::function<void(const std::string&)> changed)
    : changed_(std::make_shared<std::function<void(const std::string&)>>(std::move(changed))) {
  const BusSignal ownerChanged{
      "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "NameOwnerChanged", {name}};
  match_ = addMatch(bus, matchRule(ownerChanged), [this](sd_bus_message* signal) {
    if (!isFrom(signal, "org.freedesktop.DBus")) return;
    const char* owner = nullptr;
    if (sd_bus_message_read(signal, "sss", nullptr, nullptr, &owner) > 0) update(owner);
  });
  ask(bus, name);
}

void BusNameWatch::ask(sd_bus* bus, const std::string& name) {
  query_ = callAsync(methodCall(bus, methodOfTheBus("GetNameOwner"), name), [=, this](sd_bus_message* reply) {
    // A bus that was too busy to answer in time takes its answer for given.
    if (sd_bus_message_get_errno(reply) == ETIMEDOUT) return ask(bus, name);
    const char* owner = "";
    if (!isError(reply)) sd_bus_message_read(reply, "s", &owner);
    update(owner);
  });
}

void BusNameWatch::update(const std::string& owner) {
  if (owner_ == owner) return;
  owner_ = owner;
  const auto changed = changed_;
  (*changed)(owner);
}

}  // namespace nimbo
