// SPDX-License-Identifier: MIT
#include "app/tray/status_items.h"

#include <algorithm>
#include <string>
#include <utility>

namespace nimbo {
namespace {

using std::chrono::milliseconds;

std::string identifier(StatusItemKind kind) {
  switch (kind) {
    case StatusItemKind::compact:
      return "nimbo";
    case StatusItemKind::ai:
      return "nimbo-ai";
    case StatusItemKind::memory:
      return "nimbo-memory";
    case StatusItemKind::awake:
      return "nimbo-awake";
  }
  return {};
}

bool contains(const std::vector<StatusItemKind>& kinds, StatusItemKind kind) {
  return std::ranges::find(kinds, kind) != kinds.end();
}

}  // namespace

StatusItems::StatusItems(StatusBar& statusBar, MainLoop& mainLoop, const Settings& settings, Callbacks callbacks)
    : statusBar_(statusBar), mainLoop_(mainLoop), settings_(settings), callbacks_(std::move(callbacks)) {}

void StatusItems::configure() {
  updateItems();
  restartRotation();
}

void StatusItems::updateItems() {
  const StatusItemPlan plan = planStatusItems(settings_, rotationTab_);
  rotationTab_ = plan.rotationTab;
  std::erase_if(order_, [&](StatusItemKind kind) { return !contains(plan.shown, kind); });
  // Trays line items up as they come, so an item that is to follow another must be made after it.
  const auto stay = std::ranges::mismatch(order_, plan.shown).in1;
  order_.erase(stay, order_.end());
  const auto removed = std::erase_if(items_, [&](const auto& entry) { return !contains(order_, entry.first); });
  if (removed > 0) trackingStatusMenu_ = false;  // a menu goes with its item and does not tell
  refresh();
  for (const auto kind : plan.shown) {
    if (items_.contains(kind)) continue;
    items_[kind].item = statusBar_.makeItem(identifier(kind), callbacks_.content(kind), handlersFor(kind));
  }
  order_ = plan.shown;
}

StatusItemHandlers StatusItems::handlersFor(StatusItemKind kind) {
  return {
      [this, kind](const StatusClick& click) {
        trackingStatusMenu_ = false;
        if (click.anchor) items_[kind].frame = click.anchor;
        callbacks_.clicked(kind, click);
      },
      [this] {
        trackingStatusMenu_ = true;
        callbacks_.menuWillOpen();
        return callbacks_.menu();
      },
      [this] { trackingStatusMenu_ = false; },
      callbacks_.menu,
  };
}

void StatusItems::refresh() {
  for (const auto& [kind, entry] : items_) entry.item->setContent(callbacks_.content(kind));
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

std::shared_ptr<StatusItem> StatusItems::item(StatusItemKind kind) const {
  const auto found = items_.find(kind);
  return found == items_.end() ? nullptr : found->second.item;
}

std::optional<StatusItemKind> StatusItems::firstItem() const {
  if (items_.empty()) return std::nullopt;
  return items_.begin()->first;  // the map is ordered as the kinds are
}

std::vector<Rect> StatusItems::knownFrames() const {
  std::vector<Rect> frames;
  for (const auto& [kind, entry] : items_) {
    if (entry.frame) frames.push_back(*entry.frame);
  }
  return frames;
}

std::optional<Rect> StatusItems::knownFrame(StatusItemKind kind) const {
  const auto found = items_.find(kind);
  return found == items_.end() ? std::nullopt : found->second.frame;
}

}  // namespace nimbo
