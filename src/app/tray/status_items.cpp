// SPDX-License-Identifier: MIT
#include "app/tray/status_items.h"

#include <algorithm>
#include <string>
#include <utility>

namespace nimbo {
namespace {

using std::chrono::milliseconds;

std::string identifier(StatusItemTab tab) { return tab ? "nimbo-" + std::string(rawValue(*tab)) : "nimbo"; }

bool contains(const std::vector<StatusItemTab>& tabs, StatusItemTab tab) {
  return std::ranges::find(tabs, tab) != tabs.end();
}

}  // namespace

StatusItemPlan planStatusItems(const Settings& settings, std::optional<DashboardTab> rotationTab) {
  const auto tabs = settings.menuTabs();
  if (settings.compactMenuBar() || tabs.empty()) return {{std::nullopt}, std::nullopt};
  if (!settings.menuRotation()) return {{tabs.begin(), tabs.end()}, std::nullopt};
  const bool kept = rotationTab && std::ranges::find(tabs, *rotationTab) != tabs.end();
  const DashboardTab tab = kept ? *rotationTab : tabs.front();
  return {{tab}, tab};
}

std::optional<DashboardTab> nextRotationTab(const Settings& settings, DashboardTab tab) {
  const auto tabs = settings.menuTabs();
  const auto found = std::ranges::find(tabs, tab);
  if (tabs.size() < 2 || found == tabs.end()) return std::nullopt;
  return std::next(found) == tabs.end() ? tabs.front() : *std::next(found);
}

StatusItems::StatusItems(StatusBar& statusBar, MainLoop& mainLoop, const Settings& settings, Callbacks callbacks)
    : statusBar_(statusBar), mainLoop_(mainLoop), settings_(settings), callbacks_(std::move(callbacks)) {}

void StatusItems::configure() {
  updateItems();
  restartRotation();
}

void StatusItems::updateItems() {
  const StatusItemPlan plan = planStatusItems(settings_, rotationTab_);
  rotationTab_ = plan.rotationTab;
  std::erase_if(order_, [&](StatusItemTab tab) { return !contains(plan.shown, tab); });
  // Trays line items up as they come, so an item that is to follow another must be made after it.
  const auto stay = std::ranges::mismatch(order_, plan.shown).in1;
  order_.erase(stay, order_.end());
  const auto removed = std::erase_if(items_, [&](const auto& entry) { return !contains(order_, entry.first); });
  if (removed > 0) trackingStatusMenu_ = false;  // a menu goes with its item and does not tell
  refresh();
  for (const auto tab : plan.shown) {
    if (items_.contains(tab)) continue;
    items_[tab].item = statusBar_.makeItem(identifier(tab), callbacks_.content(tab), handlersFor(tab));
  }
  order_ = plan.shown;
}

StatusItemHandlers StatusItems::handlersFor(StatusItemTab tab) {
  StatusItemHandlers handlers;
  handlers.clicked = [this, tab](const StatusClick& click) {
    trackingStatusMenu_ = false;
    if (click.anchor) items_[tab].frame = click.anchor;
    callbacks_.clicked(tab, click);
  };
  handlers.menuWillOpen = [this] {
    trackingStatusMenu_ = true;
    callbacks_.menuWillOpen();
    return callbacks_.menu();
  };
  handlers.menuDidClose = [this] { trackingStatusMenu_ = false; };
  handlers.menuPreview = callbacks_.menu;
  return handlers;
}

void StatusItems::refresh() {
  for (const auto& [tab, entry] : items_) entry.item->setContent(callbacks_.content(tab));
}

void StatusItems::restartRotation() {
  rotationTimer_.reset();
  if (!rotationTab_ || settings_.menuTabs().size() < 2) return;
  constexpr milliseconds kLeeway(1000);
  rotationTimer_ = mainLoop_.every(settings_.menuRotationInterval(), kLeeway, [this] { rotate(); });
}

void StatusItems::rotate() {
  if (!settings_.menuRotation() || settings_.compactMenuBar() || !rotationTab_) return;
  if (trackingStatusMenu_ || callbacks_.rotationPaused()) return;
  const auto next = nextRotationTab(settings_, *rotationTab_);
  if (!next) return;
  rotationTab_ = next;
  updateItems();
}

std::shared_ptr<StatusItem> StatusItems::item(StatusItemTab tab) const {
  const auto found = items_.find(tab);
  return found == items_.end() ? nullptr : found->second.item;
}

// The map is ordered as the tabs are, with the compact item first.
StatusItemTab StatusItems::firstItem() const { return items_.empty() ? std::nullopt : items_.begin()->first; }

std::vector<Rect> StatusItems::knownFrames() const {
  std::vector<Rect> frames;
  for (const auto& [tab, entry] : items_) {
    if (entry.frame) frames.push_back(*entry.frame);
  }
  return frames;
}

std::optional<Rect> StatusItems::knownFrame(StatusItemTab tab) const {
  const auto found = items_.find(tab);
  return found == items_.end() ? std::nullopt : found->second.frame;
}

}  // namespace nimbo
