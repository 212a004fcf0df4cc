// SPDX-License-Identifier: MIT
#include "ui/qt/dashboard/usage_page.h"

#include <algorithm>
#include <utility>

#include "ui/qt/controls/content_widget.h"
#include "ui/qt/controls/dashboard_button.h"
#include "ui/qt/dashboard/usage_card.h"

namespace nimbo {
namespace {

constexpr int kScrollStep = 29;  // half a row

}  // namespace

UsagePage::UsagePage(const Theme& theme, QWidget& parent, const ControlListener& listener)
    : theme_(theme),
      listener_(listener),
      scroll_(new ScrollArea(kScrollStep, &parent)),
      controls_(theme, parent, listener) {
  scroll_->setObjectName("usage");
  scroll_->setAccessibleName("AI usage");
  controls_.control<DashboardButton>(&UsageContent::refresh);
  controls_.label("usageProgress", &UsageContent::progress);
  controls_.control<DashboardButton>(&UsageContent::configure);
  controls_.label("usageNote", &UsageContent::note);
}

void UsagePage::renderOrHide(const UsageContent* content) {
  controls_.renderOrHide(content);
  if (content == nullptr) return scroll_->hide();
  renderCards(content->cards);
  // Where there is nothing to scroll, Tab passes by; without any focus the cards would lose their place
  // in its order.
  const bool scrolls = content->document.height > content->scroll.height;
  scroll_->setFocusPolicy(scrolls ? Qt::StrongFocus : Qt::ClickFocus);
  scroll_->place(content->scroll, content->document, true);
}

void UsagePage::renderCards(const std::vector<UsageCardContent>& contents) {
  const auto before = cards_;
  std::vector<UsageCard*> cards;
  for (const auto& content : contents) {
    cards.push_back(takeCard(content.provider));
    cards.back()->setContent(content);
  }
  for (UsageCard* const gone : std::exchange(cards_, cards)) discard(*gone);
  if (cards == before) return;
  QWidget* previous = scroll_;
  for (UsageCard* const card : cards) previous = card->followInTabOrder(previous);
}

UsageCard* UsagePage::takeCard(UsageProvider provider) {
  const auto found = std::ranges::find(cards_, provider, &UsageCard::provider);
  if (found != cards_.end()) {
    UsageCard* const card = *found;
    cards_.erase(found);
    return card;
  }
  return new UsageCard(theme_, provider, listener_, scroll_->document());
}

}  // namespace nimbo
