// SPDX-License-Identifier: MIT
#include "platform/linux/accessibility/atspi_application.h"

#include <algorithm>
#include <utility>

#include "platform/linux/accessibility/atspi_element.h"

namespace nimbo {
namespace {

using std::chrono::steady_clock;

constexpr std::uint32_t kDocumentWeb = 95;  // AtspiRole

// A page of some twenty thousand elements took 1.2 s.
constexpr std::chrono::seconds kPagePatience{3};
constexpr std::chrono::milliseconds kBetweenLooks{50};

}  // namespace

/// How long a page is waited for, which is no longer than somebody wants it.
class AtspiApplication::Patience {
 public:
  explicit Patience(const std::stop_token& stop) : stop_(stop) {}

  [[nodiscard]] bool isOver() const { return stop_.stop_requested() || steady_clock::now() >= deadline_; }

 private:
  const std::stop_token& stop_;
  const Deadline deadline_ = steady_clock::now() + kPagePatience;
};

AtspiApplication::AtspiApplication(std::string sessionAddress, std::shared_ptr<AtspiBus> bus,
                                   std::optional<AtspiReference> root)
    : sessionAddress_(std::move(sessionAddress)), bus_(std::move(bus)), root_(std::move(root)) {}

void AtspiApplication::setMessagingTimeout(std::chrono::milliseconds limit) {
  if (bus_) bus_->setTimeout(limit);
}

void AtspiApplication::exposeContent(const std::stop_token& stop) {
  enableAtspi(sessionAddress_);
  if (!root_) return;
  if (const auto windows = wokenWindows(Patience(stop)); !windows.empty()) waitForPages(windows, Patience(stop));
}

std::vector<std::unique_ptr<AccessibleElement>> AtspiApplication::windows(std::size_t limit) {
  std::vector<std::unique_ptr<AccessibleElement>> elements;
  if (!root_) return elements;
  for (auto& window : bus_->childrenOf(*root_)) {
    if (elements.size() == limit) break;
    elements.push_back(std::make_unique<AtspiElement>(bus_, std::move(window)));
  }
  return elements;
}

// Chromium shows bare windows until somebody asks for the attributes of one; then it builds everything.
std::vector<AtspiReference> AtspiApplication::wokenWindows(const Patience& patience) const {
  std::vector<AtspiReference> woken;
  for (const auto& window : bus_->childrenOf(*root_)) {
    if (patience.isOver()) break;
    if (bus_->childrenOf(window).empty() && bus_->tellsAttributes(window)) woken.push_back(window);
  }
  return woken;
}

void AtspiApplication::waitForPages(const std::vector<AtspiReference>& windows, const Patience& patience) const {
  const auto isReady = [&](const AtspiReference& window) { return showsAPage(window, patience); };
  while (!std::all_of(windows.begin(), windows.end(), isReady) && !patience.isOver()) {
    bus_->waitUntil(steady_clock::now() + kBetweenLooks);
  }
}

// The page's element is there at once, but empty until the engine has built what is in it.
bool AtspiApplication::showsAPage(const AtspiReference& window, const Patience& patience) const {
  std::vector<AtspiReference> open{window};
  while (!open.empty() && !patience.isOver()) {
    const AtspiReference element = std::move(open.back());
    open.pop_back();
    auto children = bus_->childrenOf(element);
    if (bus_->roleOf(element) == kDocumentWeb) return !children.empty();
    open.insert(open.end(), std::make_move_iterator(children.rbegin()), std::make_move_iterator(children.rend()));
  }
  return false;
}

}  // namespace nimbo
