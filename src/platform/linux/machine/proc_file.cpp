// SPDX-License-Identifier: MIT
#include "platform/linux/machine/proc_file.h"

#include <dirent.h>
#include <fcntl.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <memory>

#include "base/text.h"

namespace nimbo {
namespace {

constexpr std::string_view kSpaceAndTab = " \t";

template <class Number>
std::optional<Number> parseWhole(std::string_view word) {
  Number number{};
  const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
  return error == std::errc() && end == word.data() + word.size() ? std::optional(number) : std::nullopt;
}

}  // namespace

std::optional<std::string_view> readText(const UniqueFd& file, std::span<char> buffer) {
  const ssize_t size = file ? ::pread(file.get(), buffer.data(), buffer.size(), 0) : -1;
  if (size < 0) return std::nullopt;
  return std::string_view(buffer.data(), static_cast<std::size_t>(size));
}

std::optional<std::string_view> ProcFile::read(std::span<char> buffer) {
  if (!descriptor_) descriptor_.reset(::open(path_.c_str(), O_RDONLY | O_CLOEXEC));
  const auto text = readText(descriptor_, buffer);
  if (!text) descriptor_.reset();
  return text;
}

std::optional<std::string> readAttribute(const std::string& path) {
  std::array<char, 4096> buffer;
  const auto text = ProcFile(path).read(buffer);
  return text ? std::optional<std::string>(*text) : std::nullopt;
}

std::string readAttributeLine(const std::string& path) {
  const std::string text = readAttribute(path).value_or("");
  std::string_view rest = text;
  return std::string(takeUntil(rest, '\n'));
}

void visitFolder(const std::string& path, const std::function<void(std::string_view name)>& visit) {
  struct Closer {
    void operator()(DIR* folder) const { ::closedir(folder); }
  };
  const std::unique_ptr<DIR, Closer> folder(::opendir(path.c_str()));
  if (!folder) return;
  while (const dirent* entry = ::readdir(folder.get())) visit(entry->d_name);
}

std::optional<std::string_view> takeLine(std::string_view& rest) {
  const auto end = rest.find('\n');
  if (end == std::string_view::npos) return std::nullopt;
  const std::string_view line = rest.substr(0, end);
  rest.remove_prefix(end + 1);
  return line;
}

std::string_view takeWord(std::string_view& rest) {
  rest.remove_prefix(std::min(rest.find_first_not_of(kSpaceAndTab), rest.size()));
  const std::string_view word = rest.substr(0, rest.find_first_of(kSpaceAndTab));
  rest.remove_prefix(word.size());
  return word;
}

bool takePrefix(std::string_view& rest, std::string_view prefix) {
  if (!rest.starts_with(prefix)) return false;
  rest.remove_prefix(prefix.size());
  return true;
}

std::optional<std::uint64_t> parseNumber(std::string_view word) { return parseWhole<std::uint64_t>(word); }

std::optional<double> parseDecimal(std::string_view word) { return parseWhole<double>(word); }

std::optional<std::uint64_t> parseKilobytes(std::string_view value) {
  constexpr std::uint64_t kLimit = std::uint64_t{1} << 50;
  const auto number = parseNumber(takeWord(value));
  if (!number || *number >= kLimit || takeWord(value) != "kB") return std::nullopt;
  return *number * 1024;
}

}  // namespace nimbo
