// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/desktop_entry.h"

#include <utility>

#include "base/text.h"
#include "platform/linux/desktop/desktop_programs.h"
#include "platform/posix/files/regular_file.h"

namespace nimbo {
namespace {

std::string unescaped(std::string_view value) {
  constexpr std::string_view kCodes = "sntr\\";
  constexpr std::string_view kMeanings = " \n\t\r\\";
  std::string text;
  for (std::size_t index = 0; index < value.size(); ++index) {
    const bool isEscape = value[index] == '\\' && index + 1 < value.size();
    const auto code = isEscape ? kCodes.find(value[index + 1]) : std::string_view::npos;
    // What is escaped in no known way keeps its backslash: a command may mean it for itself.
    text += code == std::string_view::npos ? value[index] : kMeanings[code];
    if (code != std::string_view::npos) ++index;
  }
  return text;
}

struct Word {
  std::string text;
  bool isQuoted = false;
};

// No rule knows single quotes, but many files have them. Of the codes that start with "%" only "%%"
// stands for anything when nothing is to be opened.
std::optional<Word> takeCommandWord(std::string_view& rest) {
  Word word;
  char quote = '\0';
  std::size_t index = 0;
  for (; index < rest.size() && (quote != '\0' || kBlanks.find(rest[index]) == std::string_view::npos); ++index) {
    const char character = rest[index];
    const bool isPair = index + 1 < rest.size();
    if (character == quote) {
      quote = '\0';
    } else if (quote == '\0' && (character == '"' || character == '\'')) {
      quote = character;
      word.isQuoted = true;
    } else if (character == '\\' && quote != '\'' && isPair) {
      word.text += rest[++index];
    } else if (character == '%' && isPair) {
      if (rest[++index] == '%') word.text += '%';
    } else {
      word.text += character;
    }
  }
  rest.remove_prefix(index);
  return quote == '\0' ? std::optional(std::move(word)) : std::nullopt;
}

std::optional<std::vector<std::string>> wordsOf(std::string_view command) {
  std::vector<std::string> words;
  for (command = trimmed(command); !command.empty(); command = trimmed(command)) {
    auto word = takeCommandWord(command);
    if (!word) return std::nullopt;
    if (word->isQuoted || !word->text.empty()) words.push_back(std::move(word->text));
  }
  return words;
}

std::optional<std::string> programPath(const std::string& name, const std::string& searchPath) {
  if (name.find('/') == std::string::npos) return findProgram(name, searchPath);
  return isExecutableFile(name) ? std::optional(name) : std::nullopt;
}

}  // namespace

std::optional<DesktopEntry> DesktopEntry::parse(std::string_view text, std::string_view group) {
  std::optional<DesktopEntry> entry;
  bool isInGroup = false;
  while (!text.empty()) {
    std::string_view line = trimmed(takeUntil(text, '\n'));
    if (line.starts_with('[')) {
      isInGroup = line.substr(1, line.size() - 2) == group && line.ends_with(']');
      if (isInGroup && !entry) entry.emplace();
    } else if (isInGroup && !line.starts_with('#') && line.find('=') != std::string_view::npos) {
      const std::string_view key = trimmed(takeUntil(line, '='));
      entry->values_[std::string(key)] = trimmed(line);
    }
  }
  return entry;
}

std::optional<std::string> DesktopEntry::text(std::string_view key) const {
  const auto found = values_.find(key);
  return found == values_.end() ? std::nullopt : std::optional(unescaped(found->second));
}

std::optional<bool> DesktopEntry::flag(std::string_view key) const {
  const auto value = text(key);
  if (value == "true" || value == "1") return true;
  if (value == "false" || value == "0") return false;
  return std::nullopt;
}

std::optional<std::vector<std::string>> DesktopEntry::list(std::string_view key) const {
  const auto value = text(key);
  if (!value) return std::nullopt;
  std::vector<std::string> items;
  std::string_view rest = *value;
  while (!rest.empty()) items.emplace_back(trimmed(takeUntil(rest, ';')));
  return items;
}

std::optional<std::vector<std::string>> DesktopEntry::command(const std::string& searchPath) const {
  if (const auto needed = text("TryExec"); needed && !programPath(*needed, searchPath)) return std::nullopt;
  auto words = wordsOf(text("Exec").value_or(""));
  if (!words || words->empty()) return std::nullopt;
  const auto program = programPath(words->front(), searchPath);
  if (!program) return std::nullopt;
  words->front() = *program;
  return words;
}

std::string quotedForExec(std::string_view argument) {
  const bool isPlain =
      !argument.empty() && argument.find_first_of(" \t\n\r\"'\\><~|&;$*?#()`") == std::string_view::npos;
  const std::string word =
      replacedCharacters(argument, {{'"', "\\\""}, {'`', "\\`"}, {'$', "\\$"}, {'\\', "\\\\"}, {'%', "%%"}});
  return isPlain ? word : '"' + word + '"';
}

std::string escapedForEntry(std::string_view text) {
  const std::string value = replacedCharacters(text, {{'\\', "\\\\"}, {'\n', "\\n"}, {'\t', "\\t"}, {'\r', "\\r"}});
  return value.starts_with(' ') ? "\\s" + value.substr(1) : value;
}

}  // namespace nimbo
