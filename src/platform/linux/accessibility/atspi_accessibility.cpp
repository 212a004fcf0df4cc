// SPDX-License-Identifier: MIT
#include "platform/linux/accessibility/atspi_accessibility.h"

#include <algorithm>
#include <chrono>
#include <functional>
#include <iterator>
#include <optional>
#include <stop_token>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/linux/accessibility/hypertext.h"
#include "platform/linux/desktop/desktop_application.h"

namespace nimbo {
namespace {

using std::chrono::steady_clock;

// A page of some twenty thousand elements took 1.2 s.
constexpr std::chrono::seconds kLongestWaitForPages{3};
constexpr std::chrono::milliseconds kBetweenLooks{50};

// Deeper than that nobody nests bold, italics and links in a line; a tree that is its own child is bounded.
constexpr int kDeepestInLine = 8;

// Roles (AtspiRole): of a page, and of words that are only set off, unlike a link or a button, which could also
// stand alone.
constexpr std::uint32_t kDocumentWeb = 95;
constexpr std::uint32_t kSection = 85;
constexpr std::uint32_t kStatic = 116;

// As it is, or as a property.
std::optional<std::string> readText(const BusMessage& answer) {
  const char* text = nullptr;
  sd_bus_message* const message = answer.get();
  const bool isProperty = answer && sd_bus_message_has_signature(message, "v") > 0;
  const int read =
      isProperty ? sd_bus_message_read(message, "v", "s", &text) : sd_bus_message_read(message, "s", &text);
  return read > 0 ? std::optional<std::string>(text) : std::nullopt;
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

/// What an element tells of itself.
struct AtspiFacts {
  std::optional<std::string> name{};
  std::optional<std::string> description{};
  std::optional<std::string> text{};
  std::vector<AtspiReference> children{};
  bool isInLine = false;
};

/// An element as AT-SPI tells of it: title and description are its name and description, the value is
/// its text. Words of one line that belong to several children are one text, either as the value or, if
/// there is more than that line, as a child with nothing but this value. Numbers, such as those of
/// progress bars, are no texts. Everything is asked for once and at the same time.
class AtspiElement final : public AccessibleElement {
 public:
  AtspiElement(std::shared_ptr<AtspiBus> bus, AtspiReference reference, std::optional<AtspiFacts> known = {})
      : bus_(std::move(bus)), reference_(std::move(reference)), facts_(std::move(known)) {}

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
    auto [children, pieces] = *std::exchange(arrangement_, std::nullopt);  // asked for anew when wanted again
    if (!pieces) std::move(children.begin(), children.end(), std::back_inserter(elements));
    for (const auto& piece : pieces.value_or(std::vector<HypertextPiece>())) {
      elements.push_back(piece.child ? std::move(children[*piece.child]) : elementOfLine(piece.line));
    }
    elements.resize(std::min(elements.size(), limit));
    return elements;
  }

 private:
  /// The children, and how the text holds them; as they are if that cannot be told.
  struct Arrangement {
    std::vector<std::unique_ptr<AtspiElement>> children;
    std::optional<std::vector<HypertextPiece>> pieces;
  };

  /// A line of the text that has no element of its own.
  [[nodiscard]] std::unique_ptr<AtspiElement> elementOfLine(const std::string& line) const {
    return std::make_unique<AtspiElement>(bus_, AtspiReference(), AtspiFacts{.text = line});
  }

  const AtspiFacts& facts(Deadline deadline) {
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
    facts_ = AtspiFacts{readText(answers[0]), readText(answers[1]), readText(answers[2]), readReferences(answers[3]),
                        isLaidOutInLine(answers[4]) && isJustWords(answers[5])};
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
      child->facts_.reset();  // it may have had no time to answer
      child->arrangement_.reset();
      return *arrangement_;
    }
    if (!children.empty()) arrangement_->pieces = takeApart(*text, children);
    return *arrangement_;
  }

  [[nodiscard]] HypertextChild asHypertext(Deadline deadline, int depth) {
    const AtspiFacts& known = facts(deadline);
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
  std::optional<AtspiFacts> facts_;
  std::optional<Arrangement> arrangement_;
};

/// Whether the wait for a page is over: after a while, or as soon as nobody wants the page any more.
using IsOver = std::function<bool()>;

IsOver waitBegins(const std::stop_token& stop) {
  return [stop, deadline = steady_clock::now() + kLongestWaitForPages] {
    return stop.stop_requested() || steady_clock::now() >= deadline;
  };
}

/// A running application, which may not show itself on the accessibility bus: then it has no windows
/// here until it is started anew.
class AtspiApplication final : public AccessibleApplication {
 public:
  /// `bus` may be null, and then `root` absent.
  AtspiApplication(std::string sessionAddress, std::shared_ptr<AtspiBus> bus, std::optional<AtspiReference> root)
      : sessionAddress_(std::move(sessionAddress)), bus_(std::move(bus)), root_(std::move(root)) {}

  void setMessagingTimeout(std::chrono::milliseconds limit) override {
    if (bus_) bus_->setTimeout(limit);
  }

  void exposeContent(const std::stop_token& stop) override {
    enableAtspi(sessionAddress_);
    if (!root_) return;
    if (const auto windows = wokenWindows(waitBegins(stop)); !windows.empty()) waitForPages(windows, waitBegins(stop));
  }

  [[nodiscard]] std::vector<std::unique_ptr<AccessibleElement>> windows(std::size_t limit) override {
    std::vector<std::unique_ptr<AccessibleElement>> elements;
    if (!root_) return elements;
    for (auto& window : bus_->childrenOf(*root_)) {
      if (elements.size() == limit) break;
      elements.push_back(std::make_unique<AtspiElement>(bus_, std::move(window)));
    }
    return elements;
  }

 private:
  // Chromium shows bare windows until somebody asks for the attributes of one; then it builds everything.
  [[nodiscard]] std::vector<AtspiReference> wokenWindows(const IsOver& isOver) const {
    std::vector<AtspiReference> woken;
    for (const auto& window : bus_->childrenOf(*root_)) {
      if (isOver()) break;
      if (bus_->childrenOf(window).empty() && bus_->tellsAttributes(window)) woken.push_back(window);
    }
    return woken;
  }

  void waitForPages(const std::vector<AtspiReference>& windows, const IsOver& isOver) const {
    const auto isReady = [&](const AtspiReference& window) { return showsAPage(window, isOver); };
    while (!std::all_of(windows.begin(), windows.end(), isReady) && !isOver()) {
      bus_->waitUntil(steady_clock::now() + kBetweenLooks);
    }
  }

  // The page's element is there at once, but empty until the engine has built what is in it.
  [[nodiscard]] bool showsAPage(const AtspiReference& window, const IsOver& isOver) const {
    std::vector<AtspiReference> open{window};
    while (!open.empty() && !isOver()) {
      const AtspiReference element = std::move(open.back());
      open.pop_back();
      auto children = bus_->childrenOf(element);
      if (bus_->roleOf(element) == kDocumentWeb) return !children.empty();
      open.insert(open.end(), std::make_move_iterator(children.rbegin()), std::make_move_iterator(children.rend()));
    }
    return false;
  }

  const std::string sessionAddress_;
  const std::shared_ptr<AtspiBus> bus_;
  const std::optional<AtspiReference> root_;
};

}  // namespace

std::unique_ptr<AccessibleApplication> AtspiAccessibility::application(const std::string& bundleIdentifier) {
  const auto* const marks = applicationMarks(bundleIdentifier);
  if (marks == nullptr) return nullptr;

  if (const auto connection = bus()) {
    for (const auto& root : connection->applications()) {
      const auto process = connection->processOf(root);
      if (!process || !isProcessOf(*marks, procRoot_, *process, ProcessShows::windows)) continue;
      return std::make_unique<AtspiApplication>(sessionAddress_, connection, root);
    }
  }
  if (!isRunning(*marks, procRoot_)) return nullptr;
  return std::make_unique<AtspiApplication>(sessionAddress_, nullptr, std::nullopt);
}

std::shared_ptr<AtspiBus> AtspiAccessibility::bus() {
  auto connection = bus_.lock();
  if (!connection || !connection->answers()) connection = AtspiBus::connect(sessionAddress_);
  bus_ = connection;
  return connection;
}

}  // namespace nimbo
