// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/desktop_entry.h"

#include <unistd.h>

#include <filesystem>
#include <system_error>
#include <utility>

#include "platform/linux/desktop/detached_programs.h"

namespace nimbo {
namespace {

constexpr std::string_view kGroup = "[Desktop Entry]";
constexpr std::string_view kBlanks = " \t\r\n";

std::string_view trimmed(std::string_view text) {
  const auto first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::string_view takeUntil(std::string_view& rest, char separator) {
  const auto end = rest.find(separator);
  const std::string_view part = rest.substr(0, end);
  rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
  return part;
}

char unescaped(char character) {
  switch (character) {
    case 's':
      return ' ';
    case 'n':
      return '\n';
    case 't':
      return '\t';
    case 'r':
      return '\r';
    default:
      return character;
  }
}

std::string unescaped(std::string_view value) {
  std::string text;
  for (std::size_t index = 0; index < value.size(); ++index) {
    const bool isEscape = value[index] == '\\' && index + 1 < value.size();
    // What is escaped in no known way keeps its backslash: a command may mean it for itself.
    if (isEscape && std::string_view("sntr\\").find(value[index + 1]) != std::string_view::npos) {
      text += unescaped(value[++index]);
    } else {
      text += value[index];
    }
  }
  return text;
}

struct Word {
  std::string text;
  bool isQuoted = false;
};

// No rule knows single quotes, but many files have them. Of the codes that start with "%" only "%%"
// stands for anything when nothing is to be opened.
std::optional<Word> takeWord(std::string_view& rest) {
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
    auto word = takeWord(command);
    if (!word) return std::nullopt;
    if (word->isQuoted || !word->text.empty()) words.push_back(std::move(word->text));
  }
  return words;
}

std::optional<std::string> programPath(const std::string& name, const std::string& searchPath) {
  if (name.find('/') == std::string::npos) return findProgram(name, searchPath);
  std::error_code error;
  const bool isProgram = std::filesystem::is_regular_file(name, error) && ::access(name.c_str(), X_OK) == 0;
  return isProgram ? std::optional(name) : std::nullopt;
}

}  // namespace

std::optional<DesktopEntry> DesktopEntry::parse(std::string_view text) {
  std::optional<DesktopEntry> entry;
  bool isInGroup = false;
  while (!text.empty()) {
    std::string_view line = trimmed(takeUntil(text, '\n'));
    if (line.starts_with('[')) {
      isInGroup = line == kGroup;
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
  return found == values_.end() ? std::nullopt : std::optional(unescaped(std::string_view(found->second)));
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
  std::string word;
  for (const char character : argument) {
    if (std::string_view("\"`$\\").find(character) != std::string_view::npos) word += '\\';
    if (character == '%') word += '%';
    word += character;
  }
  const bool isPlain =
      !argument.empty() && argument.find_first_of(" \t\n\r\"'\\><~|&;$*?#()`") == std::string_view::npos;
  return isPlain ? word : '"' + word + '"';
}

std::string escapedForEntry(std::string_view text) {
  std::string value;
  for (const char character : text) {
    switch (character) {
      case '\\':
        value += "\\\\";
        break;
      case '\n':
        value += "\\n";
        break;
      case '\t':
        value += "\\t";
        break;
      case '\r':
        value += "\\r";
        break;
      case ' ':
        value += value.empty() ? "\\s" : " ";
        break;
      default:
        value += character;
    }
  }
  return value;
}

}  // namespace nimbo
