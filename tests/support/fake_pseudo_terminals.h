// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "platform/pseudo_terminal.h"
#include "support/fake_clock.h"

namespace nimbo {

/// Runs one made-up program at a time, in which things happen at given times after its start. Whoever reads
/// and waits lets the clock go on.
class FakePseudoTerminals final : public PseudoTerminals {
 public:
  using Milliseconds = std::chrono::milliseconds;

  /// `clock` outlives it.
  explicit FakePseudoTerminals(FakeClock& clock) : clock_(clock) {}

  [[nodiscard]] Result<std::unique_ptr<PseudoTerminal>, std::error_code> open(TerminalSize size) override {
    if (noTerminal) return tl::unexpected(*noTerminal);
    sizes.push_back(size);
    return std::make_unique<Terminal>(*this);
  }

  void at(Milliseconds moment, std::function<void()> happen) { script_.emplace(moment, std::move(happen)); }
  void writes(Milliseconds moment, std::string text) {
    at(moment, [this, text = std::move(text)] { unread_ += text; });
  }
  /// The program ends; with `terminalStaysOpen` something that it started holds on to the terminal.
  void ends(Milliseconds moment, bool terminalStaysOpen = false) {
    at(moment, [this, terminalStaysOpen] {
      running_ = false;
      open_ = terminalStaysOpen;
    });
  }
  /// So much later than now, from inside of what happens.
  void writesAfter(Milliseconds delay, std::string text) { writes(elapsed() + delay, std::move(text)); }

  [[nodiscard]] Milliseconds elapsed() const { return std::chrono::round<Milliseconds>(clock_.uptime() - startedAt_); }

  std::optional<std::error_code> noTerminal;  ///< why none can be opened
  std::optional<std::error_code> notStarted;  ///< why no program can be started
  std::function<void(std::string_view)> onWrite;

  std::vector<ChildProgram> started;
  std::vector<TerminalSize> sizes;
  std::vector<std::string> written;
  std::vector<Milliseconds> patiences;  ///< of every stop
  Milliseconds longestRead{0};          ///< the most that one read was willing to wait
  int reads = 0;
  int alive = 0;  ///< programs that exist

 private:
  class Terminal final : public PseudoTerminal {
   public:
    explicit Terminal(FakePseudoTerminals& owner) : owner_(owner) {}

    [[nodiscard]] Result<std::unique_ptr<TerminalProgram>, std::error_code> start(
        const ChildProgram& program) override {
      if (owner_.notStarted) return tl::unexpected(*owner_.notStarted);
      owner_.started.push_back(program);
      owner_.startedAt_ = owner_.clock_.uptime();
      owner_.running_ = true;
      owner_.open_ = true;
      return std::make_unique<Program>(owner_);
    }

   private:
    FakePseudoTerminals& owner_;
  };

  class Program final : public TerminalProgram {
   public:
    explicit Program(FakePseudoTerminals& owner) : owner_(owner) { ++owner_.alive; }
    ~Program() override { --owner_.alive; }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    [[nodiscard]] Input read(std::string& bytes, Milliseconds patience) override {
      return owner_.read(bytes, patience);
    }
    [[nodiscard]] bool write(std::string_view bytes) override {
      owner_.written.emplace_back(bytes);
      if (owner_.onWrite) owner_.onWrite(bytes);
      return owner_.open_;
    }
    [[nodiscard]] bool running() override { return owner_.running_; }
    void stop(Milliseconds patience) override {
      owner_.patiences.push_back(patience);
      owner_.running_ = false;
      owner_.open_ = false;
    }

   private:
    FakePseudoTerminals& owner_;
  };

  TerminalProgram::Input read(std::string& bytes, Milliseconds patience) {
    constexpr std::size_t kMaximum = 8192;
    ++reads;
    longestRead = std::max(longestRead, patience);
    const Milliseconds end = elapsed() + patience;
    happenUntil(elapsed());
    while (unread_.empty() && open_ && elapsed() < end) {
      const auto next = script_.empty() ? end : std::clamp(script_.begin()->first, elapsed(), end);
      clock_.advance(next - elapsed());
      happenUntil(next);
    }
    if (unread_.empty()) return open_ ? TerminalProgram::Input::nothing : TerminalProgram::Input::ended;
    bytes += unread_.substr(0, kMaximum);
    unread_.erase(0, kMaximum);
    return TerminalProgram::Input::some;
  }

  void happenUntil(Milliseconds moment) {
    while (!script_.empty() && script_.begin()->first <= moment) {
      const auto happen = std::move(script_.begin()->second);
      script_.erase(script_.begin());
      happen();
    }
  }

  FakeClock& clock_;
  std::multimap<Milliseconds, std::function<void()>> script_;
  std::chrono::duration<double> startedAt_{0};
  std::string unread_;
  bool running_ = false;
  bool open_ = false;
};

}  // namespace nimbo
