// SPDX-License-Identifier: MIT
#include "platform/linux/remote/dbus_remote_control.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "base/text.h"
#include "platform/linux/bus/program_address.h"

namespace nimbo {
namespace {

constexpr std::size_t kLongestName = 60;  // bytes
constexpr std::int64_t kLongestExtension = std::int64_t{366} * 24 * 3600;

/// One printable line of bounded length.
std::string nameFrom(const char* given) {
  std::string name = printableLine(std::string_view(given).substr(0, kLongestName));
  return name.empty() ? "another program" : name;
}

}  // namespace

const sd_bus_vtable DbusRemoteControl::kTable[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD_WITH_NAMES("Start", "xb", SD_BUS_PARAM(until) SD_BUS_PARAM(keep_display_on), "", ,
                             bus_table::method<&DbusRemoteControl::start>, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("Stop", "", "", bus_table::method<&DbusRemoteControl::stop>, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD_WITH_NAMES("Extend", "x", SD_BUS_PARAM(seconds), "", , bus_table::method<&DbusRemoteControl::extend>,
                             SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD_WITH_NAMES("Hold", "sb", SD_BUS_PARAM(name) SD_BUS_PARAM(keep_display_on), "u", SD_BUS_PARAM(holder),
                             bus_table::method<&DbusRemoteControl::hold>, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD_WITH_NAMES("Release", "u", SD_BUS_PARAM(holder), "", , bus_table::method<&DbusRemoteControl::release>,
                             SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_PROPERTY("Active", "b", bus_table::property<&DbusRemoteControl::active>, 0,
                    SD_BUS_VTABLE_PROPERTY_EMITS_CHANGE),
    SD_BUS_PROPERTY("Own", "b", bus_table::property<&DbusRemoteControl::own>, 0, SD_BUS_VTABLE_PROPERTY_EMITS_CHANGE),
    SD_BUS_PROPERTY("EndsAt", "x", bus_table::property<&DbusRemoteControl::endsAt>, 0,
                    SD_BUS_VTABLE_PROPERTY_EMITS_CHANGE),
    SD_BUS_PROPERTY("KeepsDisplayOn", "b", bus_table::property<&DbusRemoteControl::keepsDisplayOn>, 0,
                    SD_BUS_VTABLE_PROPERTY_EMITS_CHANGE),
    SD_BUS_PROPERTY("Message", "s", bus_table::property<&DbusRemoteControl::message>, 0,
                    SD_BUS_VTABLE_PROPERTY_EMITS_CHANGE),
    SD_BUS_PROPERTY("Holders", "as", bus_table::property<&DbusRemoteControl::names>, 0,
                    SD_BUS_VTABLE_PROPERTY_EMITS_CHANGE),
    SD_BUS_VTABLE_END,
};

void DbusRemoteControl::offer(RemoteControlHandlers handlers) {
  handlers_ = std::move(handlers);
  told_ = handlers_.awake();
  object_ = addObject(session_, kProgramPath, kAwakeInterface, kTable, this);
  figures_.emplace(session_, handlers_);
}

std::int64_t DbusRemoteControl::endsAt() const { return secondsOf(told_.endsAt); }

void DbusRemoteControl::awakeChanged() {
  if (!object_) return;
  const AwakeStatus before = std::exchange(told_, handlers_.awake());
  if (!told_.active) holders_.clear();
  std::vector<const char*> changed;
  const auto compare = [&](const char* name, bool same) {
    if (!same) changed.push_back(name);
  };
  compare("Active", before.active == told_.active);
  compare("Own", before.own == told_.own);
  compare("EndsAt", secondsOf(before.endsAt) == endsAt());
  compare("KeepsDisplayOn", before.keepsDisplayOn == told_.keepsDisplayOn);
  compare("Message", before.message == told_.message);
  compare("Holders", before.holders == told_.holders);
  emitChanged(session_, kProgramPath, kAwakeInterface, std::move(changed));
}

int DbusRemoteControl::start(sd_bus_message* call, sd_bus_error* error) {
  std::int64_t until = 0;
  int keepDisplayOn = 0;
  if (const int read = sd_bus_message_read(call, "xb", &until, &keepDisplayOn); read < 0) return read;
  if (until < 0 || until > kLatestTime) return refuse(error, "Choose an end time in the future.");
  const auto started = handlers_.start(timeOf(until), keepDisplayOn != 0);
  return started ? sd_bus_reply_method_return(call, "") : refuse(error, started.error());
}

int DbusRemoteControl::stop(sd_bus_message* call, sd_bus_error* /*error*/) {
  handlers_.stop();
  return sd_bus_reply_method_return(call, "");
}

int DbusRemoteControl::extend(sd_bus_message* call, sd_bus_error* error) {
  std::int64_t seconds = 0;
  if (const int read = sd_bus_message_read(call, "x", &seconds); read < 0) return read;
  if (seconds <= 0 || seconds > kLongestExtension) return refuse(error, "That is no time to extend it by.");
  const auto extended = handlers_.extend(std::chrono::seconds(seconds));
  return extended ? sd_bus_reply_method_return(call, "") : refuse(error, extended.error());
}

int DbusRemoteControl::hold(sd_bus_message* call, sd_bus_error* error) {
  const char* name = nullptr;
  int keepDisplayOn = 0;
  if (const int read = sd_bus_message_read(call, "sb", &name, &keepDisplayOn); read < 0) return read;
  const auto holder = handlers_.hold(nameFrom(name), keepDisplayOn != 0);
  if (!holder) return refuse(error, holder.error());
  const std::string owner = sd_bus_message_get_sender(call);
  auto watch = std::make_unique<BusNameWatch>(session_, owner, [this, id = *holder](const std::string& now) {
    if (now.empty()) letGo(id);
  });
  holders_.insert_or_assign(*holder, Holder{owner, std::move(watch)});
  return sd_bus_reply_method_return(call, "u", *holder);
}

// A program lets go only what it holds.
int DbusRemoteControl::release(sd_bus_message* call, sd_bus_error* error) {
  std::uint32_t id = 0;
  if (const int read = sd_bus_message_read(call, "u", &id); read < 0) return read;
  const auto found = holders_.find(id);
  if (found == holders_.end() || found->second.owner != sd_bus_message_get_sender(call)) {
    return refuse(error, "You hold nothing of that number.");
  }
  letGo(id);
  return sd_bus_reply_method_return(call, "");
}

void DbusRemoteControl::letGo(std::uint32_t holder) {
  holders_.erase(holder);
  handlers_.letGo(holder);
}

}  // namespace nimbo
