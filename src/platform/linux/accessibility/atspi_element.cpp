// SPDX-License-Identifier: MIT
#include "platform/linux/accessibility/atspi_element.h"

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/linux/accessibility/hypertext.h"

namespace nimbo {
namespace {

// Deeper than that nobody nests bold, italics and links in a line; a tree that is its own child is bounded.
constexpr int kDeepestInLine = 8;

// Roles (AtspiRole) of words that are only set off, unlike a link or a button, which could also stand alone.
constexpr std::uint32_t kSection = 85;
constexpr std::uint32_t kStatic = 116;

/// A line of an element's text that has no element of its own.
class TextLine final : public AccessibleElement {
 public:
  explicit TextLine(std::string text) : text_(std::move(text)) {}

  [[nodiscard]] std::optional<std::string> title() override { return std::nullopt; }
  [[nodiscard]] std::optional<std::string> description() override { return std::nullopt; }
  [[nodiscard]] std::optional<std::string> value() override { return text_; }
  [[nodiscard]] std::vector<std::unique_ptr<AccessibleElement>> children(std::size_t /*limit*/) override { return {}; }

 private:
  std::string text_;
};

std::optional<std::string> readText(const BusMessage& answer) {
  const char* text = nullptr;
  if (!answer || sd_bus_message_read(answer.get(), "s", &text) <= 0) return std::nullopt;
  return text;
}

std::optional<std::string> readTextProperty(const BusMessage& answer) {
  const char* text = nullptr;
  if (!answer || sd_bus_message_read(answer.get(), "v", "s", &text) <= 0) return std::nullopt;
  return text;
}

// Web engines tell how an element is laid out.
bool isLaidOutInLine(const BusMessage& answer) {
  if (!answer || sd_bus_message_enter_container(answer.get(), SD_BUS_TYPE_ARRAY, "{ss}") < 0) return false;
  const char* name = nullptr;
  const char* value = nullptr;
  while (sd_bus_message_read(answer.get(), "{ss}", &name, &value) > 0) {
    if (std::string_view(name) == "display") return std::string_view(value) == "inline";
  }
  return false;
}

bool isJustWords(const BusMessage& answer) {
  const std::uint32_t role = readNumber(answer).value_or(0);
  return role == kStatic || role == kSection;
}

class AtspiElement final : public AccessibleElement {
 public:
  AtspiElement(std::shared_ptr<AtspiBus> bus, AtspiReference reference)
      : bus_(std::move(bus)), reference_(std::move(reference)) {}

  [[nodiscard]] std::optional<std::string> title() override { return facts(bus_->deadline()).name; }

  [[nodiscard]] std::optional<std::string> description() override { return facts(bus_->deadline()).description; }

  [[nodiscard]] std::optional<std::string> value() override {
    const Deadline deadline = bus_->deadline();
    if (auto line = onlyLine(deadline, 0)) return line;
    if (arrangement(deadline, 0).pieces) return std::nullopt;  // they come as children
    const auto& text = facts(deadline).text;
    return text && text->find(kPlaceOfAnObject) == std::string::npos ? text : std::nullopt;
  }

  [[nodiscard]] std::vector<std::unique_ptr<AccessibleElement>> children(std::size_t limit) override {
    std::vector<std::unique_ptr<AccessibleElement>> elements;
    const Deadline deadline = bus_->deadline();
    if (onlyLine(deadline, 0)) return elements;
    arrangement(deadline, 0);
    Arrangement arrangement = *std::exchange(arrangement_, std::nullopt);  // asked for anew when wanted again
    if (!arrangement.pieces) {
      for (auto& child : arrangement.children) {
        if (elements.size() < limit) elements.push_back(std::move(child));
      }
      return elements;
    }
    for (auto& piece : *arrangement.pieces) {
      if (elements.size() == limit) break;
      if (piece.child) {
        elements.push_back(std::move(arrangement.children[*piece.child]));
      } else {
        elements.push_back(std::make_unique<TextLine>(std::move(piece.line)));
      }
    }
    return elements;
  }

 private:
  struct Facts {
    std::optional<std::string> name;
    std::optional<std::string> description;
    std::optional<std::string> text;
    std::vector<AtspiReference> children;
    bool isInLine = false;
  };
  /// The children, and how the text holds them; as they are if that cannot be told.
  struct Arrangement {
    std::vector<std::unique_ptr<AtspiElement>> children;
    std::optional<std::vector<HypertextPiece>> pieces;
  };

  const Facts& facts(Deadline deadline) {
    if (facts_) return *facts_;
    std::vector<BusMessage> calls;
    for (const char* const property : {"Name", "Description"}) {
      calls.push_back(bus_->call(reference_, kBusProperties, "Get", kAtspiAccessible, property));
    }
    calls.push_back(bus_->call(reference_, kAtspiText, "GetText", 0, -1));  // the whole text
    for (const char* const method : {"GetChildren", "GetAttributes", "GetRole"}) {
      calls.push_back(bus_->call(reference_, kAtspiAccessible, method));
    }
    const auto answers = bus_->ask(calls, deadline);
    facts_ = Facts{readTextProperty(answers[0]), readTextProperty(answers[1]), readText(answers[2]),
                   readReferences(answers[3]), isLaidOutInLine(answers[4]) && isJustWords(answers[5])};
    return *facts_;
  }

  Arrangement& arrangement(Deadline deadline, int depth) {
    if (arrangement_) return *arrangement_;
    arrangement_.emplace();
    for (const auto& child : facts(deadline).children) {
      arrangement_->children.push_back(std::make_unique<AtspiElement>(bus_, child));
    }
    const auto& text = facts(deadline).text;
    if (!text || text->empty() || depth >= kDeepestInLine) return *arrangement_;
    std::vector<HypertextChild> children;
    for (const auto& child : arrangement_->children) {
      children.push_back(child->asHypertext(deadline, depth + 1));
      if (std::chrono::steady_clock::now() < deadline) continue;
      child->forget();  // it may have had no time to answer
      return *arrangement_;
    }
    if (!children.empty()) arrangement_->pieces = takeApart(*text, children);
    return *arrangement_;
  }

  void forget() {
    facts_.reset();
    arrangement_.reset();
  }

  [[nodiscard]] HypertextChild asHypertext(Deadline deadline, int depth) {
    const Facts& known = facts(deadline);
    if (!known.isInLine) return {known.text.value_or(""), false};
    const auto line = onlyLine(deadline, depth);
    return {line.value_or(""), line && !line->empty()};
  }

  [[nodiscard]] std::optional<std::string> onlyLine(Deadline deadline, int depth) {
    const Arrangement& parts = arrangement(deadline, depth);
    if (parts.children.empty()) return facts(deadline).text;
    if (!parts.pieces || parts.pieces->size() != 1 || parts.pieces->front().child) return std::nullopt;
    return parts.pieces->front().line;
  }

  const std::shared_ptr<AtspiBus> bus_;
  const AtspiReference reference_;
  std::optional<Facts> facts_;
  std::optional<Arrangement> arrangement_;
};

}  // namespace

std::unique_ptr<AccessibleElement> makeAtspiElement(std::shared_ptr<AtspiBus> bus, AtspiReference reference) {
  return std::make_unique<AtspiElement>(std::move(bus), std::move(reference));
}

}  // namespace nimbo
