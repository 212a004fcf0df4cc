// SPDX-License-Identifier: MIT
#include "app/windows/update_alerts.h"

#include <gtest/gtest.h>

#include "support/fake_user_interface.h"

namespace nimbo {
namespace {

const UpdateNotice kOffer{"Nimbo 1.2 is available", "You have 1.0.", {"Download", "Later"}};
const UpdateNotice kNothing{"You’re up to date", "", {"OK"}};

class UpdateAlertsTest : public ::testing::Test {
 protected:
  void show(const UpdateNotice& notice) {
    alerts.show(notice, [this](std::size_t button) { answers.push_back(button); });
  }
  [[nodiscard]] FakeAlert& newest() const { return *interface.alerts().back(); }
  [[nodiscard]] std::size_t open() const { return interface.openAlerts().size(); }

  FakeUserInterface interface;
  int roomMade = 0;
  std::vector<std::size_t> answers;
  std::string found;
  UpdateAlerts alerts{interface, {[this] { ++roomMade; }, [this](const auto& title, const auto&) { found = title; }}};
};

TEST_F(UpdateAlertsTest, NoticeIsAnAlertWhoseLastButtonIsThatOfEscape) {
  show(kOffer);
  EXPECT_EQ(newest().content(), (AlertContent{kOffer.title, kOffer.text, kOffer.buttons, 1}));
  EXPECT_EQ(roomMade, 1);
  show(kNothing);
  EXPECT_EQ(newest().content().cancel, 0U);
}

TEST_F(UpdateAlertsTest, AnswerComesOnceAfterTheAlertIsGone) {
  alerts.show(kOffer, [this](std::size_t button) {
    EXPECT_EQ(open(), 0U);
    answers.push_back(button);
  });
  ASSERT_TRUE(newest().answer(0));
  EXPECT_FALSE(newest().answer(1));
  EXPECT_EQ(answers, std::vector<std::size_t>{0});
}

TEST_F(UpdateAlertsTest, ClosingDeclines) {
  show(kOffer);
  ASSERT_TRUE(newest().close());
  EXPECT_EQ(answers, std::vector<std::size_t>{1});
}

TEST_F(UpdateAlertsTest, AnswerMayShowTheNextNotice) {
  alerts.show(kOffer, [this](std::size_t /*button*/) { show(kNothing); });
  ASSERT_TRUE(newest().answer(0));
  ASSERT_EQ(open(), 1U);
  EXPECT_EQ(newest().content().title, kNothing.title);
  ASSERT_TRUE(newest().answer(0));
  EXPECT_EQ(answers, std::vector<std::size_t>{0});
}

TEST_F(UpdateAlertsTest, NextNoticeTakesThePlaceOfTheOneBefore) {
  show(kOffer);
  show(kNothing);
  EXPECT_EQ(open(), 1U);
  EXPECT_FALSE(interface.alerts().front()->answer(0));
  EXPECT_TRUE(answers.empty());
}

TEST_F(UpdateAlertsTest, DismissedNoticeIsNeverAnswered) {
  alerts.dismiss();
  show(kOffer);
  alerts.dismiss();
  EXPECT_EQ(open(), 0U);
  EXPECT_FALSE(newest().answer(0));
  EXPECT_TRUE(answers.empty());
}

TEST_F(UpdateAlertsTest, NobodyNeedsToListen) {
  alerts.show(kNothing, {});
  ASSERT_EQ(open(), 1U);
  newest().answer(0);
  EXPECT_EQ(open(), 0U);
}

TEST_F(UpdateAlertsTest, UpdateThatNobodyAskedForOpensNoAlert) {
  alerts.found("Nimbo 1.2 is available", "");
  EXPECT_EQ(found, "Nimbo 1.2 is available");
  EXPECT_EQ(roomMade, 0);
  EXPECT_TRUE(interface.alerts().empty());
}

TEST_F(UpdateAlertsTest, NoticeThatCannotBeShownHasItsLastButtonPressed) {
  show(kOffer);
  newest().fail();
  EXPECT_EQ(answers, std::vector<std::size_t>{1});
  EXPECT_EQ(open(), 0U);
}

}  // namespace
}  // namespace nimbo
