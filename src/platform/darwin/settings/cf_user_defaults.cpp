// SPDX-License-Identifier: MIT
#include "platform/darwin/settings/cf_user_defaults.h"

#include <atomic>
#include <mutex>
#include <utility>

#include "base/bounded_json.h"
#include "platform/darwin/settings/property_list.h"

namespace nimbo {
namespace {

using nlohmann::json;

bool synchronize(CFStringRef domain) {
  return CFPreferencesSynchronize(domain, kCFPreferencesCurrentUser, kCFPreferencesAnyHost) != 0;
}

json valuesOf(CFStringRef domain) {
  const CfObject<CFDictionaryRef> values(
      CFPreferencesCopyMultiple(nullptr, domain, kCFPreferencesCurrentUser, kCFPreferencesAnyHost));
  return values ? jsonOf(values.get()) : json::object();
}

/// Nothing but `to` is there afterwards, in place of `from`.
bool replace(CFStringRef domain, const json& from, const json& to) {
  json gone = json::array();
  for (const auto& [key, value] : from.items()) {
    if (!to.contains(key)) gone.push_back(key);
  }
  CFPreferencesSetMultiple(static_cast<CFDictionaryRef>(propertyListOf(to).get()),
                           static_cast<CFArrayRef>(propertyListOf(gone).get()), domain, kCFPreferencesCurrentUser,
                           kCFPreferencesAnyHost);
  return synchronize(domain);
}

}  // namespace

/// Whether there are changes that are not known to be written; shared with the background.
struct CfUserDefaults::Unwritten {
  std::atomic<bool> any = false;
  std::mutex writer;  // held while they are written

  void write(CFStringRef domain) {
    const std::scoped_lock lock(writer);
    if (any.exchange(false) && !synchronize(domain)) any = true;
  }
};

CfUserDefaults::CfUserDefaults(std::string_view domain, std::function<void(std::function<void()>)> background)
    : domain_(makeCfString(domain)), background_(std::move(background)), unwritten_(std::make_shared<Unwritten>()) {}

CfUserDefaults::~CfUserDefaults() { unwritten_->write(domain_.get()); }

template <class Value>
std::optional<Value> CfUserDefaults::value(std::string_view key, std::optional<Value> (*read)(const json&)) const {
  const CfObject<CFPropertyListRef> stored(CFPreferencesCopyAppValue(makeCfString(key).get(), domain_.get()));
  if (auto result = read(jsonOf(stored.get()))) return result;
  const auto found = registered_.find(key);
  return found == registered_.end() ? std::nullopt : read(*found);
}

std::optional<bool> CfUserDefaults::boolean(std::string_view key) const { return value(key, booleanValue); }
std::optional<std::int64_t> CfUserDefaults::integer(std::string_view key) const { return value(key, integerValue); }
std::optional<std::string> CfUserDefaults::string(std::string_view key) const { return value(key, stringValue); }
std::optional<std::vector<std::string>> CfUserDefaults::stringArray(std::string_view key) const {
  return value(key, stringArrayValue);
}

void CfUserDefaults::set(std::string_view key, json value) {
  CFPreferencesSetAppValue(makeCfString(key).get(), propertyListOf(value).get(), domain_.get());
  unwritten_->any = true;
  background_([unwritten = unwritten_, domain = std::make_shared<CfObject<CFStringRef>>(retained(domain_.get()))] {
    unwritten->write(domain->get());
  });
}

std::optional<json> CfUserDefaultsDomains::persistentDomain(std::string_view name) const {
  json values = valuesOf(makeCfString(name).get());
  return values.empty() ? std::nullopt : std::optional(std::move(values));
}

bool CfUserDefaultsDomains::setPersistentDomain(std::string_view name, const json& values) {
  const auto domain = makeCfString(name);
  const json old = valuesOf(domain.get());
  if (!values.is_object()) return false;
  if (replace(domain.get(), old, values)) return true;
  replace(domain.get(), values, old);
  return false;
}

void CfUserDefaultsDomains::removePersistentDomain(std::string_view name) {
  const auto domain = makeCfString(name);
  replace(domain.get(), valuesOf(domain.get()), json::object());
}

}  // namespace nimbo
