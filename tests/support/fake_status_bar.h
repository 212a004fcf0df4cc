// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "base/observer_list.h"
#include "platform/status_bar.h"

namespace nimbo {

/// A tray in memory: a test looks at its items, clicks them and opens their menus as a user would.
class FakeStatusBar final : public StatusBar {
 public:
  /// What the bar knows of one item; stays readable after the item is gone.
  struct Item {
    StatusItemName name;
    StatusItemContent content;
    StatusItemHandlers handlers;
    bool highlighted = false;
    int highlightCalls = 0;  ///< with true
    int contentChanges = 0;  ///< those that changed something
    bool alive = true;
    bool menuOpen = false;
  };

  [[nodiscard]] std::unique_ptr<StatusItem> makeItem(StatusItemName name, StatusItemContent content,
                                                     StatusItemHandlers handlers) override {
    auto item = std::make_shared<Item>();
    item->name = std::move(name);
    item->content = std::move(content);
    item->handlers = std::move(handlers);
    all_.push_back(item);
    return std::make_unique<Handle>(std::move(item));
  }

  [[nodiscard]] bool showsTitles() const override { return titlesShown; }
  void onAbsence(std::function<void(const std::string& advice)> told) override { absent = std::move(told); }

  [[nodiscard]] ItemOrder itemOrder() const override { return order_; }
  [[nodiscard]] Subscription observeItemOrder(std::function<void()> changed) override {
    return orderObservers_.add(std::move(changed));
  }
  void setItemOrder(ItemOrder order) {
    order_ = order;
    orderObservers_.notify();
  }

  bool titlesShown = true;
  std::function<void(const std::string& advice)> absent;  ///< set once somebody wants to know

  /// The living item of that name; null when there is none.
  [[nodiscard]] std::shared_ptr<Item> item(const std::string& identifier) const {
    for (const auto& item : all_) {
      if (item->alive && item->name.identifier == identifier) return item;
    }
    return nullptr;
  }

  /// The living items' names in the order of their making.
  [[nodiscard]] std::vector<std::string> identifiers() const {
    std::vector<std::string> names;
    for (const auto& item : all_) {
      if (item->alive) names.push_back(item->name.identifier);
    }
    return names;
  }

  /// Every item ever made.
  [[nodiscard]] const std::vector<std::shared_ptr<Item>>& all() const { return all_; }

  /// False when there is no such item or it does not listen.
  bool click(const std::string& identifier, const StatusClick& click = {}) {
    const auto found = item(identifier);
    if (!found || !found->handlers.clicked) return false;
    const auto clicked = found->handlers.clicked;
    clicked(click);
    return true;
  }

  /// Opens an item's menu and leaves it open; an empty menu when there is no such item.
  StatusMenu openMenu(const std::string& identifier) {
    const auto found = item(identifier);
    if (!found || !found->handlers.menuWillOpen) return {};
    found->menuOpen = true;
    const auto menuWillOpen = found->handlers.menuWillOpen;
    return menuWillOpen();
  }

  void closeMenu(const std::string& identifier) {
    const auto found = item(identifier);
    if (!found || !std::exchange(found->menuOpen, false)) return;
    const auto menuDidClose = found->handlers.menuDidClose;
    if (menuDidClose) menuDidClose();
  }

  /// What a bar does that reads menus ahead: nothing opens.
  StatusMenu previewMenu(const std::string& identifier) {
    const auto found = item(identifier);
    return found ? found->handlers.menuPreview() : StatusMenu();
  }

  /// Opens the menu, chooses the entry with that title and closes the menu as hosts do: closed
  /// first, then clicked. False when there is no such enabled entry.
  bool choose(const std::string& identifier, const std::string& title) {
    const StatusMenu menu = openMenu(identifier);
    closeMenu(identifier);
    for (const MenuEntry& entry : menu.entries) {
      if (entry.kind != MenuEntry::Kind::action || entry.title != title || !entry.enabled || !entry.action) continue;
      entry.action();
      return true;
    }
    return false;
  }

 private:
  class Handle final : public StatusItem {
   public:
    explicit Handle(std::shared_ptr<Item> item) : item_(std::move(item)) {}
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    ~Handle() override {
      item_->alive = false;
      item_->handlers = {};
    }

    void setContent(const StatusItemContent& content) override {
      if (content == item_->content) return;
      item_->content = content;
      ++item_->contentChanges;
    }

    void setHighlighted(bool highlighted) override {
      item_->highlighted = highlighted;
      if (highlighted) ++item_->highlightCalls;
    }

   private:
    std::shared_ptr<Item> item_;
  };

  std::vector<std::shared_ptr<Item>> all_;
  ItemOrder order_ = ItemOrder::oldestFirst;
  ObserverList<> orderObservers_;
};

}  // namespace nimbo
