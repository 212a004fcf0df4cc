// SPDX-License-Identifier: MIT
#include "platform/linux/settings/json_user_defaults.h"

#include <mutex>
#include <nlohmann/json.hpp>
#include <utility>

#include "base/bounded_json.h"
#include "platform/linux/settings/json_domain_file.h"

namespace nimbo {
namespace {

using nlohmann::json;

// Invalid UTF-8 and numbers that JSON has no text for must mean the same before and after a restart.
json asReadBack(const json& value) {
  return json::parse(value.dump(-1, ' ', /*ensure_ascii=*/false, json::error_handler_t::replace));
}

}  // namespace

struct JsonUserDefaults::State : std::enable_shared_from_this<State> {
  State(JsonDomainFile domainFile, Services given) : file(std::move(domainFile)), services(std::move(given)) {}

  template <class Value>
  std::optional<Value> value(std::string_view key, std::optional<Value> (*read)(const json&)) {
    lookAtFile();
    const json& stored = unsaved.contains(key) ? unsaved : file.values();
    for (const json* const layer : {&stored, &std::as_const(registered)}) {
      const auto found = layer->find(key);
      if (found == layer->end()) continue;
      if (auto result = read(*found)) return result;
    }
    return std::nullopt;
  }

  void lookAtFile() {
    const std::uint64_t turn = services.loop.turn();
    if (std::exchange(lookedAt, turn) != turn) file.refresh();
  }

  /// Hands all that is unsaved to the background.
  void startWriting() {
    writing = true;
    services.background([self = shared_from_this(), file = file, changes = unsaved]() mutable {
      const std::scoped_lock lock(self->writer);
      if (self->ended) return;
      const bool saved = file.update(changes);
      self->services.loop.post([weak = std::weak_ptr(self), saved, file, changes] {
        if (const auto owner = weak.lock()) owner->finishWriting(saved, file, changes);
      });
    });
  }

  /// What was set meanwhile is written next. What could not be written waits for the next change.
  void finishWriting(bool saved, const JsonDomainFile& as, const json& changes) {
    writing = false;
    if (saved) {
      file = as;
      for (const auto& [key, value] : changes.items()) {
        if (unsaved[key] == value) unsaved.erase(key);
      }
    }
    if (!unsaved.empty() && unsaved != changes) startWriting();
  }

  JsonDomainFile file;
  const Services services;
  json registered = json::object();
  json unsaved = json::object();          // what was set and is not known to be in the file
  std::optional<std::uint64_t> lookedAt;  // the turn of the main loop in which the file was looked at last
  bool writing = false;

  std::mutex writer;   // held while the file is written
  bool ended = false;  // guarded by writer
};

JsonUserDefaults::JsonUserDefaults(const std::filesystem::path& folder, std::string_view domain, Services services)
    : state_(std::make_shared<State>(JsonDomainFile(folder, domain), std::move(services))) {}

// NOLINTNEXTLINE(bugprone-exception-escape): without memory for the last write there is nobody to tell
JsonUserDefaults::~JsonUserDefaults() {
  const std::scoped_lock lock(state_->writer);
  state_->ended = true;
  if (!state_->unsaved.empty()) (void)state_->file.update(state_->unsaved);
}

void JsonUserDefaults::registerDefault(std::string_view key, json value) { state_->registered[key] = std::move(value); }

std::optional<bool> JsonUserDefaults::boolean(std::string_view key) const { return state_->value(key, booleanValue); }
std::optional<std::int64_t> JsonUserDefaults::integer(std::string_view key) const {
  return state_->value(key, integerValue);
}
std::optional<std::string> JsonUserDefaults::string(std::string_view key) const {
  return state_->value(key, stringValue);
}
std::optional<std::vector<std::string>> JsonUserDefaults::stringArray(std::string_view key) const {
  return state_->value(key, stringArrayValue);
}

void JsonUserDefaults::set(std::string_view key, json value) {
  state_->unsaved[key] = asReadBack(value);
  if (!state_->writing) state_->startWriting();
}

std::optional<json> JsonUserDefaultsDomains::persistentDomain(std::string_view name) const {
  JsonDomainFile file(folder_, name);
  if (file.refresh() != JsonDomainFile::State::good) return std::nullopt;
  return file.values();
}

bool JsonUserDefaultsDomains::setPersistentDomain(std::string_view name, const json& values) {
  JsonDomainFile file(folder_, name);
  return file.refresh() != JsonDomainFile::State::malformed && file.write(values);
}

void JsonUserDefaultsDomains::removePersistentDomain(std::string_view name) { JsonDomainFile(folder_, name).remove(); }

}  // namespace nimbo
