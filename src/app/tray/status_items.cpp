// SPDX-License-Identifier: MIT
#include "app/tray/status_items.h"

#include <algorithm>
#include <string>
#include <utility>

namespace nimbo {
namespace {

using std::chrono::milliseconds;

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
    : statusBar_(statusBar),
      mainLoop_(mainLoop),
      settings_(settings),
      callbacks_(std::move(callbacks)),
      itemOrder_(statusBar.observeItemOrder([this] {
        if (!slots_.empty()) updateItems();
      })) {}

void StatusItems::configure() {
  updateItems();
  restartRotation();
}

StatusItemName StatusItems::nameOf(StatusItemTab tab) const {
  if (rotationTab_) return {"nimbo-rotation"};
  if (!tab) return {"nimbo"};
  const auto order = settings_.tabOrder();
  const auto place = std::ranges::find(order, *tab) - order.begin();
  std::string arrangement;
  if (!std::ranges::equal(order, kAllDashboardTabs)) {
    for (const DashboardTab each : order) arrangement.append("-").append(rawValue(each));
  }
  return {"nimbo-" + std::string(rawValue(*tab)), static_cast<int>(place), arrangement};
}

StatusItemContent StatusItems::contentOf(StatusItemTab tab) const {
  StatusItemContent content = callbacks_.content(tab);
  if (rotationTab_ && !content.title) content.title = "";
  return content;
}

void StatusItems::updateItems() {
  StatusItemPlan plan = planStatusItems(settings_, rotationTab_);
  rotationTab_ = plan.rotationTab;
  const auto isFor = [this](const Slot& slot, StatusItemTab tab) { return slot.name == nameOf(tab); };
  const std::size_t before = slots_.size();
  slots_.remove_if([&](const Slot& slot) {
    return std::ranges::none_of(plan.shown, [&](StatusItemTab tab) { return isFor(slot, tab); });
  });
  // Bars line items up as they come, so an item that is to follow another must be made after it, or before.
  if (statusBar_.itemOrder() == ItemOrder::newestFirst) std::ranges::reverse(plan.shown);
  const auto [firstToGo, firstToMake] = std::ranges::mismatch(slots_, plan.shown, isFor);
  slots_.erase(firstToGo, slots_.end());
  if (slots_.size() < before) trackingStatusMenu_ = false;  // a menu goes with its item and does not tell
  if (rotationTab_ && !slots_.empty()) slots_.front().tab = rotationTab_;
  refresh();
  for (auto tab = firstToMake; tab != plan.shown.end(); ++tab) {
    Slot& slot = slots_.emplace_back(Slot{nameOf(*tab), *tab});
    slot.item = statusBar_.makeItem(slot.name, contentOf(*tab), handlersFor(slot));
  }
}

StatusItemHandlers StatusItems::handlersFor(Slot& slot) {
  StatusItemHandlers handlers;
  handlers.clicked = [this, &slot](const StatusClick& click) {
    trackingStatusMenu_ = false;
    if (click.anchor) slot.frame = click.anchor;
    callbacks_.clicked(slot.tab, click);
  };
  handlers.menuWillOpen = [this] {
    trackingStatusMenu_ = true;
    callbacks_.menuWillOpen();
    return callbacks_.menu();
  };
  handlers.menuDidClose = [this] { trackingStatusMenu_ = false; };
  handlers.menuPreview = callbacks_.menu;
  handlers.moved = [this, &slot](const Rect& place) {
    slot.frame = place;
    callbacks_.moved(slot.tab);
  };
  return handlers;
}

void StatusItems::refresh() {
  for (const auto& slot : slots_) slot.item->setContent(contentOf(slot.tab));
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

const StatusItems::Slot* StatusItems::find(StatusItemTab tab) const {
  const auto found = std::ranges::find(slots_, tab, &Slot::tab);
  return found == slots_.end() ? nullptr : &*found;
}

std::shared_ptr<StatusItem> StatusItems::item(StatusItemTab tab) const {
  const Slot* const slot = find(tab);
  return slot ? slot->item : nullptr;
}

// Tabs are ordered so, with the compact item first.
StatusItemTab StatusItems::firstItem() const {
  return slots_.empty() ? std::nullopt : std::ranges::min(slots_, {}, &Slot::tab).tab;
}

std::vector<Rect> StatusItems::knownFrames() const {
  std::vector<Rect> frames;
  for (const auto& slot : slots_) {
    if (slot.frame) frames.push_back(*slot.frame);
  }
  return frames;
}

std::optional<Rect> StatusItems::knownFrame(StatusItemTab tab) const {
  const Slot* const slot = find(tab);
  return slot ? slot->frame : std::nullopt;
}

}  // namespace nimbo
