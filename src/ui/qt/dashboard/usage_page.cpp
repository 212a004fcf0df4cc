// SPDX-License-Identifier: MIT
#include "ui/qt/dashboard/usage_page.h"

#include <algorithm>
#include <utility>

#include "ui/qt/controls/dashboard_button.h"
#include "ui/qt/controls/fitted_label.h"
#include "ui/qt/controls/scroll_area.h"
#include "ui/qt/dashboard/usage_card.h"

namespace nimbo {
namespace {

constexpr int kScrollStep = 29;  // half a row

/// Calls a copy, because the action may give the page other actions.
template <class Action, class... Values>
void call(const Action& action, Values... values) {
  if (const Action act = action) act(values...);
}

/// `content`, but hidden together with its page.
template <class Content>
Content onPage(bool pageVisible, Content content) {
  content.visible = content.visible && pageVisible;
  return content;
}

}  // namespace

UsagePage::UsagePage(const Theme& theme, QWidget& parent)
    : theme_(theme),
      scroll_(new ScrollArea(kScrollStep, &parent)),
      refresh_(new DashboardButton(
          theme, [this] { call(actions_.refresh); }, &parent)),
      progress_(new FittedLabel(theme, &parent)),
      configure_(new DashboardButton(
          theme, [this] { call(actions_.configure); }, &parent)),
      note_(new FittedLabel(theme, &parent)) {
  scroll_->setObjectName("usage");
  scroll_->setAccessibleName("AI usage");
  progress_->setObjectName("usageProgress");
  note_->setObjectName("usageNote");
}

void UsagePage::setActions(UsageActions actions) { actions_ = std::move(actions); }

void UsagePage::render(const UsageContent& content) {
  renderCards(content.cards);
  // Where there is nothing to scroll, Tab passes by; without any focus the cards would lose their place
  // in its order.
  const bool scrolls = content.document.height > content.scroll.height;
  scroll_->setFocusPolicy(scrolls ? Qt::StrongFocus : Qt::ClickFocus);
  scroll_->place(content.scroll, content.document, content.visible);
  refresh_->setContent(onPage(content.visible, content.refresh));
  progress_->setContent(onPage(content.visible, content.progress));
  configure_->setContent(onPage(content.visible, content.configure));
  note_->setContent(onPage(content.visible, content.note));
}

void UsagePage::renderCards(const std::vector<UsageCardContent>& contents) {
  const auto before = cards_;
  std::vector<UsageCard*> cards;
  for (const auto& content : contents) {
    cards.push_back(takeCard(content.provider));
    cards.back()->setContent(content);
  }
  for (UsageCard* const gone : std::exchange(cards_, cards)) {
    gone->hide();
    // Not at once: it may be its own button that made it go.
    gone->deleteLater();
  }
  if (cards == before) return;
  QWidget* previous = scroll_;
  for (UsageCard* const card : cards) previous = card->followInTabOrder(previous);
}

UsageCard* UsagePage::takeCard(UsageProvider provider) {
  const auto found =
      std::find_if(cards_.begin(), cards_.end(), [provider](const auto* card) { return card->provider() == provider; });
  if (found == cards_.end()) return makeCard(provider);
  UsageCard* const card = *found;
  cards_.erase(found);
  return card;
}

UsageCard* UsagePage::makeCard(UsageProvider provider) {
  return new UsageCard(theme_, provider,
                       {[this, provider] { call(actions_.openLink, provider); }, [this] { call(actions_.configure); }},
                       scroll_->document());
}

}  // namespace nimbo
