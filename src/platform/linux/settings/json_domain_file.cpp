// SPDX-License-Identifier: MIT
#include "platform/linux/settings/json_domain_file.h"

#include <fmt/chrono.h>
#include <fmt/core.h>
#include <unistd.h>

#include <algorithm>
#include <cassert>
#include <cstdio>
#include <ctime>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>

#include "base/bounded_json.h"
#include "platform/posix/files/atomic_file.h"
#include "platform/posix/files/regular_file.h"

namespace nimbo {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;

std::optional<json> parseObject(std::string_view text) {
  auto value = parseBoundedJson(text);
  return value && value->is_object() ? std::move(value) : std::nullopt;
}

// For people to edit: one member a line, sorted by key. Invalid UTF-8 becomes U+FFFD.
std::string textOf(const json& object) {
  return object.dump(2, ' ', /*ensure_ascii=*/false, json::error_handler_t::replace) + "\n";
}

// The date is that of the edit that went wrong.
fs::path unusedAsideName(const fs::path& file, const FileStamp& stamp) {
  constexpr std::int64_t kLastSecondOfYear9999 = 253402300799;
  const std::time_t edited = std::clamp(stamp.modifiedSeconds, std::int64_t{0}, kLastSecondOfYear9999);
  const std::string name = fmt::format("{}.unreadable-{:%Y-%m-%dT%H-%M-%S}", file.string(), fmt::localtime(edited));
  fs::path candidate = name;
  std::error_code ignored;
  for (int number = 2; fs::exists(fs::symlink_status(candidate, ignored)); ++number) {
    candidate = fmt::format("{}-{}", name, number);
  }
  return candidate;
}

bool commitKeepingOldAside(AtomicFile& file) {
  const auto stamp = fileStamp(file.target());
  if (!stamp) return false;
  const fs::path aside = unusedAsideName(file.target(), *stamp);
  if (std::rename(file.target().c_str(), aside.c_str()) != 0) return false;
  if (!file.commit()) return true;
  std::rename(aside.c_str(), file.target().c_str());
  return false;
}

}  // namespace

JsonDomainFile::JsonDomainFile(const fs::path& folder, std::string_view domain)
    : path_(folder / fmt::format("{}.json", domain)), values_(std::make_shared<json>(json::object())) {
  assert(!domain.empty() && domain.find('/') == std::string_view::npos);
}

JsonDomainFile::State JsonDomainFile::refresh() {
  const auto stamp = fileStamp(path_);
  seen_ = stamp ? std::optional(*stamp) : std::nullopt;
  if (stamp && stamp_ == *stamp) return state_;
  stamp_.reset();
  if (!stamp && stamp.error() == std::errc::no_such_file_or_directory) {
    values_ = std::make_shared<json>(json::object());
    return state_ = State::missing;
  }
  const auto text = readRegularFile(path_, kMaximumJsonBytes);
  if (!text && text.error() != std::errc::file_too_large) return state_ = State::inaccessible;
  auto values = text ? parseObject(*text) : std::nullopt;
  if (values) values_ = std::make_shared<json>(std::move(*values));
  if (stamp && isSettled(*stamp, std::time(nullptr))) stamp_ = *stamp;
  return state_ = values ? State::good : State::malformed;
}

bool JsonDomainFile::write(const json& values) {
  if (state_ == State::inaccessible) return false;
  if (state_ != State::missing && values == *values_) return true;
  const std::string text = textOf(values);
  // What cannot be read back would take every other setting with it.
  if (!parseObject(text)) return false;
  auto file = AtomicFile::prepare(path_, text);
  if (!file || wasEdited()) return false;
  const bool written = state_ == State::malformed ? commitKeepingOldAside(*file) : !file->commit();
  if (!written) return false;
  values_ = std::make_shared<json>(values);
  state_ = State::good;
  stamp_.reset();
  return true;
}

bool JsonDomainFile::update(const json& changes) {
  constexpr int kMostTries = 3;
  for (int tries = 1;; ++tries) {
    refresh();
    json values = *values_;
    values.update(changes);
    if (write(values)) return true;
    if (tries == kMostTries || !wasEdited()) return false;
  }
}

bool JsonDomainFile::wasEdited() const {
  const auto stamp = fileStamp(path_);
  return seen_ != (stamp ? std::optional(*stamp) : std::nullopt);
}

void JsonDomainFile::remove() { ::unlink(path_.c_str()); }

}  // namespace nimbo
