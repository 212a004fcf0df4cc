// SPDX-License-Identifier: MIT
#include <algorithm>
#include <chrono>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "fuzz/fuzz_input.h"
#include "platform/linux/accessibility/hypertext.h"
#include "support/fake_clock.h"
#include "usage/claude/claude_desktop_usage.h"

using namespace nimbo;

namespace {

constexpr std::size_t kNodeBytes = 4;
constexpr std::string_view kTexts[] = {"", "Plan usage limits", "61", "% used", "Resets in 2 hr", "\uFFFC", "61%\n"};

/// A tree as the input has it, whose elements take their time to answer.
struct Window {
  std::string_view graph;
  std::chrono::milliseconds perElement;
  FakeClock clock{};
  long asked = 0;
};

/// What the graph says of each element: two of the texts, and which element its children begin with and how many
/// they are; so an element may have itself for a child, and any number of parents.
class Node final : public AccessibleElement {
 public:
  Node(Window& window, std::size_t index) : window_(window), index_(index) {}

  std::optional<std::string> title() override {
    ++window_.asked;
    window_.clock.advance(window_.perElement);
    return text(0);
  }
  std::optional<std::string> description() override { return std::nullopt; }
  std::optional<std::string> value() override { return text(1); }
  std::vector<std::unique_ptr<AccessibleElement>> children(std::size_t limit) override {
    std::vector<std::unique_ptr<AccessibleElement>> found;
    const std::size_t elements = window_.graph.size() / kNodeBytes;
    for (std::size_t child = 0; child < at(3) % 4 && found.size() < limit; ++child) {
      found.push_back(std::make_unique<Node>(window_, (at(2) + child) % elements));
    }
    return found;
  }

 private:
  [[nodiscard]] std::size_t at(std::size_t field) const {
    return static_cast<unsigned char>(window_.graph[index_ * kNodeBytes + field]);
  }
  [[nodiscard]] std::string text(std::size_t field) const { return std::string(kTexts[at(field) % std::size(kTexts)]); }

  Window& window_;
  const std::size_t index_;
};

// The words of the children, in a text that is made of them, are all found again, in order.
void takeApartText(std::string_view text, std::string_view pieces) {
  std::vector<HypertextChild> children;
  for (const char piece : pieces) {
    const auto choice = static_cast<unsigned char>(piece);
    children.push_back({std::string(kTexts[choice % std::size(kTexts)]), choice >= 128});
  }
  const auto found = takeApart(text, children);
  std::size_t next = 0;
  for (const auto& piece : found.value_or(std::vector<HypertextPiece>())) {
    if (!piece.child) require(!piece.line.empty() && piece.line.find('\n') == std::string::npos);
    if (piece.child) require(*piece.child >= next && *piece.child < children.size());
    if (piece.child) next = *piece.child + 1;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view input = textOf(data, size);
  takeApartText(input.substr(input.size() / 4), input.substr(0, input.size() / 4));
  if (size <= kNodeBytes) return 0;
  Window window{input.substr(1), std::chrono::milliseconds(1 + 4 * data[0])};
  Node root(window, 0);
  const std::string text = windowText(root, window.clock);
  require(window.asked <= std::min(1500L, 2000 / window.perElement.count() + 1));
  require(text.size() <= 36 * static_cast<std::size_t>(window.asked));
  return 0;
}
