// SPDX-License-Identifier: MIT
#include "usage/claude/terminal_text.h"

#include <algorithm>

#include "base/utf8_text.h"

namespace nimbo {
namespace {

constexpr char kEscape = '\x1B';
constexpr char kBell = '\a';
constexpr std::string_view kReplacement = "\uFFFD";

bool isBetween(char character, char first, char last) { return character >= first && character <= last; }

// How many bytes at the end may be completed to a character by what follows.
std::size_t cutCharacterLength(std::string_view bytes) {
  constexpr std::size_t kLongest = 4;
  for (std::size_t length = 1; length < kLongest && length <= bytes.size(); ++length) {
    const std::string_view tail = bytes.substr(bytes.size() - length);
    const auto lead = static_cast<unsigned char>(tail.front());
    if (lead < 0x80) return 0;
    if (lead < 0xC0) continue;
    const std::size_t whole = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : kLongest;
    const bool mayBegin = lead >= 0xC2 && lead <= 0xF4;
    return mayBegin && length < whole && repairedUtf8(tail) == kReplacement ? length : 0;
  }
  return 0;
}

void appendWithLineFeeds(std::string_view text, std::string& out) {
  const auto start = static_cast<std::ptrdiff_t>(out.size());
  out += text;
  std::replace(out.begin() + start, out.end(), '\r', '\n');
}

}  // namespace

void EscapeFilter::feed(std::string_view text, std::string& out) {
  while (!text.empty()) {
    if (state_ == State::text) {
      const std::size_t escape = text.find(kEscape);
      out.append(text.substr(0, escape));
      if (escape == std::string_view::npos) return;
      text.remove_prefix(escape + 1);
      open_ = kEscape;
      state_ = State::escape;
      continue;
    }
    const Step step = kind_ == Kind::operatingSystemCommand ? stepCommand(text.front()) : stepControl(text.front());
    if (step == Step::broken) {
      giveUp(out);
      continue;
    }
    if (step == Step::open) open_ += text.front();
    if (step == Step::closed) open_.clear();
    text.remove_prefix(1);
  }
}

EscapeFilter::Step EscapeFilter::stepCommand(char character) {
  if (state_ == State::escape) {
    if (character != ']') return Step::broken;
    state_ = State::body;
    return Step::open;
  }
  const bool closes = state_ == State::end ? character == '\\' : character == kBell;
  if (!closes && state_ == State::end) return Step::broken;
  if (!closes && character == kEscape) state_ = State::end;
  if (closes) state_ = State::text;
  return closes ? Step::closed : Step::open;
}

EscapeFilter::Step EscapeFilter::stepControl(char character) {
  if (state_ == State::escape) {
    if (character != '[') return Step::broken;
    state_ = State::body;
    return Step::open;
  }
  if (isBetween(character, '@', '~')) {
    state_ = State::text;
    return Step::closed;
  }
  if (isBetween(character, ' ', '/')) {
    state_ = State::end;
    return Step::open;
  }
  return state_ == State::body && isBetween(character, '0', '?') ? Step::open : Step::broken;
}

// Only a command can be broken after a second escape, which may begin the next sequence.
void EscapeFilter::giveUp(std::string& out) {
  const bool beginsAnother = kind_ == Kind::operatingSystemCommand && state_ == State::end;
  if (beginsAnother) open_.pop_back();
  out += open_;
  open_.clear();
  if (beginsAnother) open_ = kEscape;
  state_ = beginsAnother ? State::escape : State::text;
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
  appendWithLineFeeds(plain, settled_);
}

std::string TerminalText::unsettled() const {
  EscapeFilter commands = commands_;
  std::string withoutCommands;
  if (!cut_.empty()) commands.feed(kReplacement, withoutCommands);
  withoutCommands += commands.open();
  EscapeFilter controls = controls_;
  std::string plain;
  controls.feed(withoutCommands, plain);
  plain += controls.open();
  std::string text;
  appendWithLineFeeds(plain, text);
  return text;
}

}  // namespace nimbo
