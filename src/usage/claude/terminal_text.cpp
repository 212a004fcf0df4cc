// SPDX-License-Identifier: MIT
#include "usage/claude/terminal_text.h"

#include <algorithm>
#include <utility>

#include "base/utf8_text.h"

namespace nimbo {
namespace {

constexpr char kEscape = '\x1B';
constexpr char kBell = '\a';
constexpr std::string_view kReplacement = "\uFFFD";

bool isBetween(char character, char first, char last) { return character >= first && character <= last; }

// How many bytes at the end may be completed to a character by what follows. Of several it is the
// beginning of one that is repaired to a single U+FFFD.
std::size_t cutCharacterLength(std::string_view bytes) {
  for (const std::size_t length : {std::size_t{3}, std::size_t{2}}) {
    const std::string_view tail = bytes.substr(bytes.size() - std::min(length, bytes.size()));
    if (tail.size() == length && !isUtf8(tail) && repairedUtf8(tail) == kReplacement) return length;
  }
  return !bytes.empty() && isBetween(bytes.back(), '\xC2', '\xF4') ? 1 : 0;
}

enum class Progress { open, complete, broken };

// Of a text that begins with ESC, of which all but the last character was `open` before.
Progress commandProgress(std::string_view text) {
  if (text.size() == 1) return Progress::open;
  if (text[1] != ']') return Progress::broken;
  if (text.size() > 2 && text[text.size() - 2] == kEscape) {
    return text.back() == '\\' ? Progress::complete : Progress::broken;
  }
  return text.back() == kBell ? Progress::complete : Progress::open;
}

Progress controlProgress(std::string_view text) {
  if (text.size() == 1) return Progress::open;
  if (text.size() == 2) return text[1] == '[' ? Progress::open : Progress::broken;
  if (isBetween(text.back(), '@', '~')) return Progress::complete;
  const bool isIntermediate = isBetween(text.back(), ' ', '/');
  const bool isParameter = isBetween(text.back(), '0', '?') && !isBetween(text[text.size() - 2], ' ', '/');
  return isIntermediate || isParameter ? Progress::open : Progress::broken;
}

std::string withLineFeeds(std::string text) {
  std::ranges::replace(text, '\r', '\n');
  return text;
}

}  // namespace

void EscapeFilter::feed(std::string_view text, std::string& out) {
  while (!text.empty()) {
    if (open_.empty()) {
      const std::size_t escape = std::min(text.find(kEscape), text.size());
      out.append(text.substr(0, escape));
      text.remove_prefix(escape);
      if (text.empty()) return;
    }
    open_ += text.front();
    text.remove_prefix(1);
    settle(out);
  }
}

// An escape within a sequence that broke may begin the next one.
void EscapeFilter::settle(std::string& out) {
  const Progress progress = kind_ == Kind::operatingSystemCommand ? commandProgress(open_) : controlProgress(open_);
  if (progress == Progress::open) return;
  if (progress == Progress::complete) return open_.clear();
  const std::size_t escape = open_.rfind(kEscape);
  const std::size_t textEnd = escape > 0 ? escape : open_.size();
  out.append(open_, 0, textEnd);
  open_.erase(0, textEnd);
  if (!open_.empty()) settle(out);
}

void TerminalText::append(std::string_view bytes) {
  std::string joined = std::move(cut_);
  joined += bytes;
  cut_ = joined.substr(joined.size() - cutCharacterLength(joined));
  joined.resize(joined.size() - cut_.size());
  std::string withoutCommands;
  commands_.feed(repairedUtf8(joined), withoutCommands);
  std::string plain;
  controls_.feed(withoutCommands, plain);
  settled_ += withLineFeeds(std::move(plain));
}

std::string TerminalText::unsettled() const {
  EscapeFilter commands = commands_;
  std::string withoutCommands;
  if (!cut_.empty()) commands.feed(kReplacement, withoutCommands);
  withoutCommands += commands.open();
  EscapeFilter controls = controls_;
  std::string plain;
  controls.feed(withoutCommands, plain);
  return withLineFeeds(plain + controls.open());
}

}  // namespace nimbo
