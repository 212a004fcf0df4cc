// SPDX-License-Identifier: MIT
#include "platform/linux/accessibility/atspi_accessibility.h"

#include <algorithm>
#include <chrono>
#include <optional>
#include <stop_token>
#include <utility>
#include <vector>

#include "platform/linux/accessibility/application_process.h"
#include "platform/linux/accessibility/atspi_element.h"
#include "platform/linux/desktop/desktop_application.h"

namespace nimbo {
namespace {

using std::chrono::steady_clock;

constexpr std::uint32_t kDocumentWeb = 95;  // AtspiRole

// A page of some twenty thousand elements took 1.2 s.
constexpr std::chrono::seconds kLongestWaitForPages{3};
constexpr std::chrono::milliseconds kBetweenLooks{50};

/// The wait for a page: over after a while, or as soon as nobody wants the page any more.
class PageWait {
 public:
  explicit PageWait(const std::stop_token& stop) : stop_(stop) {}

  [[nodiscard]] bool isOver() const { return stop_.stop_requested() || steady_clock::now() >= deadline_; }

 private:
  const std::stop_token& stop_;
  const Deadline deadline_ = steady_clock::now() + kLongestWaitForPages;
};

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
    if (const auto windows = wokenWindows(PageWait(stop)); !windows.empty()) waitForPages(windows, PageWait(stop));
  }

  [[nodiscard]] std::vector<std::unique_ptr<AccessibleElement>> windows(std::size_t limit) override {
    std::vector<std::unique_ptr<AccessibleElement>> elements;
    if (!root_) return elements;
    for (auto& window : bus_->childrenOf(*root_)) {
      if (elements.size() == limit) break;
      elements.push_back(makeAtspiElement(bus_, std::move(window)));
    }
    return elements;
  }

 private:
  // Chromium shows bare windows until somebody asks for the attributes of one; then it builds everything.
  [[nodiscard]] std::vector<AtspiReference> wokenWindows(const PageWait& wait) const {
    std::vector<AtspiReference> woken;
    for (const auto& window : bus_->childrenOf(*root_)) {
      if (wait.isOver()) break;
      if (bus_->childrenOf(window).empty() && bus_->tellsAttributes(window)) woken.push_back(window);
    }
    return woken;
  }

  void waitForPages(const std::vector<AtspiReference>& windows, const PageWait& wait) const {
    const auto isReady = [&](const AtspiReference& window) { return showsAPage(window, wait); };
    while (!std::all_of(windows.begin(), windows.end(), isReady) && !wait.isOver()) {
      bus_->waitUntil(steady_clock::now() + kBetweenLooks);
    }
  }

  // The page's element is there at once, but empty until the engine has built what is in it.
  [[nodiscard]] bool showsAPage(const AtspiReference& window, const PageWait& wait) const {
    std::vector<AtspiReference> open{window};
    while (!open.empty() && !wait.isOver()) {
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

AtspiAccessibility::AtspiAccessibility(std::string sessionAddress, std::string procRoot)
    : sessionAddress_(std::move(sessionAddress)), procRoot_(std::move(procRoot)) {}

bool AtspiAccessibility::isTrusted() { return bus() != nullptr; }

// There is nobody to ask. What is missing is that applications offer their content, and that starts the bus, too.
void AtspiAccessibility::requestTrust() { enableAtspi(sessionAddress_); }

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
