// SPDX-License-Identifier: MIT
#include <QAccessible>
#include <QDialog>
#include <QPushButton>

#include "ui/controls/palette.h"
#include "ui/qt/controls/fitted_label.h"
#include "ui/qt/qt_test.h"

namespace nimbo {
namespace {

const AlertContent kQuestion{"Keep Awake is running",
                             "Quitting or installing an update ends this session. Your Mac may sleep afterward.",
                             {"Keep Running", "End Session & Quit"}};

class AlertOnScreen : public QtTest {
 protected:
  void SetUp() override { interface().setAppearance(Appearance::light); }

  void show(const AlertContent& content = kQuestion) {
    alert_ = interface().showAlert(content,
                                   [this](std::optional<std::size_t> button) { answers_.push_back(button.value()); });
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window()));
  }
  static QDialog* find() {
    for (QWidget* const candidate : QApplication::topLevelWidgets()) {
      if (candidate->objectName() == "alert") return qobject_cast<QDialog*>(candidate);
    }
    return nullptr;
  }
  static QDialog& window() {
    if (auto* const found = find()) return *found;
    throw std::logic_error("no alert");
  }
  static QPushButton& button(int index) {
    return *window().findChild<QPushButton*>("alertButton" + QString::number(index));
  }
  static void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
    QTest::keyClick(window().windowHandle(), key, modifiers);
  }
  static void click(int index) {
    QTest::mouseClick(window().windowHandle(), Qt::LeftButton, {}, button(index).geometry().center());
  }
  [[nodiscard]] bool answered() const {
    return QTest::qWaitFor([this] { return !answers_.empty(); });
  }

  std::unique_ptr<Alert> alert_;
  std::vector<std::size_t> answers_;
};

TEST_F(AlertOnScreen, StandsInTheMiddleAboveOtherWindows) {
  show();
  const QRect screen = window().screen()->availableGeometry();
  EXPECT_NEAR(window().geometry().center().x(), screen.center().x(), 2);
  EXPECT_LT(window().geometry().center().y(), screen.center().y());
  EXPECT_TRUE(screen.contains(window().geometry()));
  EXPECT_TRUE(window().windowFlags() & Qt::WindowStaysOnTopHint);
  EXPECT_TRUE(window().isActiveWindow());
  EXPECT_TRUE(answers_.empty());
}

TEST_F(AlertOnScreen, TextsAreWholeAndNothingOverlaps) {
  show();
  const auto& title = *window().findChild<FittedLabel*>("alertTitle");
  const auto& text = *window().findChild<FittedLabel*>("alertText");
  EXPECT_EQ(title.lines().size(), 1U);
  EXPECT_EQ(title.lines()[0].text, "Keep Awake is running");
  EXPECT_EQ(title.lines()[0].font.weight(), QFont::DemiBold);
  EXPECT_EQ(text.lines().size(), 2U);
  EXPECT_LT(title.geometry().bottom(), text.geometry().top());
  EXPECT_LT(text.geometry().bottom(), button(0).geometry().top());
  EXPECT_LT(button(1).geometry().right(), button(0).geometry().left()) << "the default one stands at the right end";
  EXPECT_GT(button(1).geometry().left(), 0);
  EXPECT_TRUE(window().rect().contains(button(0).geometry()));
}

TEST_F(AlertOnScreen, LongTextMakesItHigher) {
  show();
  const int height = window().height();
  auto content = kQuestion;
  for (int count = 0; count < 3; ++count) content.text += " " + kQuestion.text;
  alert_.reset();
  show(content);
  EXPECT_GT(window().height(), height + 50);
  EXPECT_GT(window().findChild<FittedLabel*>("alertText")->lines().size(), 5U);
}

TEST_F(AlertOnScreen, DefaultButtonHasTheAccent) {
  show();
  const QImage picture = window().grab().toImage();
  const auto ground = [&](int index) {
    const QRect face = button(index).geometry();
    return picture.pixel(face.left() + 10, face.center().y());
  };
  const Color accent = color(ColorRole::accentGround, Appearance::light);
  EXPECT_EQ(ground(0), qRgb(accent.red, accent.green, accent.blue));
  EXPECT_NE(ground(1), ground(0));
}

TEST_F(AlertOnScreen, ButtonsAnswerWithTheirIndexAfterTheWindowIsGone) {
  show();
  button(1).click();
  EXPECT_FALSE(window().isVisible());
  EXPECT_TRUE(answers_.empty()) << "not from within the click";
  ASSERT_TRUE(answered());
  EXPECT_EQ(answers_, std::vector<std::size_t>{1});
}

TEST_F(AlertOnScreen, ReturnPressesTheDefaultButton) {
  show();
  press(Qt::Key_Return);
  ASSERT_TRUE(answered());
  EXPECT_EQ(answers_, std::vector<std::size_t>{0});
}

TEST_F(AlertOnScreen, EscapePressesTheFirstButton) {
  show();
  press(Qt::Key_Tab);
  press(Qt::Key_Escape);
  ASSERT_TRUE(answered());
  EXPECT_EQ(answers_, std::vector<std::size_t>{0});
}

TEST_F(AlertOnScreen, ClosingTheWindowPressesTheFirstButton) {
  show();
  window().close();
  ASSERT_TRUE(answered());
  EXPECT_EQ(answers_, std::vector<std::size_t>{0});
}

TEST_F(AlertOnScreen, EscapeAndClosingPressTheCancelButtonAndReturnTheFirstOne) {
  auto content = kQuestion;
  content.cancel = 1;
  show(content);
  press(Qt::Key_Escape);
  ASSERT_TRUE(answered());
  show(content);
  window().close();
  ASSERT_TRUE(QTest::qWaitFor([this] { return answers_.size() == 2; }));
  show(content);
  press(Qt::Key_Return);
  ASSERT_TRUE(QTest::qWaitFor([this] { return answers_.size() == 3; }));
  EXPECT_EQ(answers_, (std::vector<std::size_t>{1, 1, 0}));
}

TEST_F(AlertOnScreen, TabGoesAroundTheButtonsAndSpacePressesTheOneReached) {
  show();
  EXPECT_TRUE(button(0).hasFocus());
  press(Qt::Key_Tab);
  EXPECT_TRUE(button(1).hasFocus());
  EXPECT_TRUE(button(0).isDefault());
  EXPECT_FALSE(button(1).isDefault());
  press(Qt::Key_Tab);
  EXPECT_TRUE(button(0).hasFocus());
  press(Qt::Key_Backtab, Qt::ShiftModifier);
  press(Qt::Key_Space);
  ASSERT_TRUE(answered());
  EXPECT_EQ(answers_, std::vector<std::size_t>{1});
}

TEST_F(AlertOnScreen, FocusReachedByKeyboardIsMarked) {
  show();
  const QImage before = window().grab().toImage();
  press(Qt::Key_Tab);
  press(Qt::Key_Tab);
  ASSERT_TRUE(button(0).hasFocus());
  EXPECT_NE(window().grab().toImage(), before) << "also on the accent";
}

TEST_F(AlertOnScreen, AnswersOnceHoweverOftenItIsPressed) {
  show();
  click(0);
  button(1).click();
  window().close();
  ASSERT_TRUE(answered());
  QCoreApplication::processEvents();
  EXPECT_EQ(answers_, std::vector<std::size_t>{0});
}

TEST_F(AlertOnScreen, AnswerMayDestroyIt) {
  alert_ = interface().showAlert(kQuestion, [this](std::optional<std::size_t> button) {
    answers_.push_back(button.value());
    alert_.reset();
  });
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&window()));
  click(1);
  ASSERT_TRUE(answered());
  EXPECT_EQ(find(), nullptr);
}

TEST_F(AlertOnScreen, DestroyedUnansweredItCallsNothing) {
  show();
  alert_.reset();
  EXPECT_EQ(find(), nullptr);
  show();
  button(0).click();
  alert_.reset();
  QCoreApplication::processEvents();
  EXPECT_TRUE(answers_.empty()) << "not even when the answer was under way";
}

TEST_F(AlertOnScreen, NobodyNeedsToListen) {
  alert_ = interface().showAlert(kQuestion, {});
  button(0).click();
  QCoreApplication::processEvents();
  EXPECT_FALSE(window().isVisible());
}

TEST_F(AlertOnScreen, PresentingBringsItBackToTheFrontUntilItIsAnswered) {
  show();
  QWidget other;
  other.show();
  other.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
  alert_->present();
  EXPECT_TRUE(QTest::qWaitForWindowActive(&window()));
  click(0);
  alert_->present();
  EXPECT_FALSE(window().isVisible());
}

TEST_F(AlertOnScreen, IsAnAlertToAssistiveTechnologyWithTitleTextAndButtons) {
  show();
  auto& accessible = *QAccessible::queryAccessibleInterface(&window());
  EXPECT_EQ(accessible.role(), QAccessible::AlertMessage);
  EXPECT_EQ(accessible.text(QAccessible::Name), QString::fromStdString(kQuestion.title));
  EXPECT_EQ(accessible.text(QAccessible::Description), QString::fromStdString(kQuestion.text));
  QStringList names;
  for (int index = 0; index < accessible.childCount(); ++index) {
    names.push_back(accessible.child(index)->text(QAccessible::Name));
  }
  EXPECT_EQ(names, (QStringList{QString::fromStdString(kQuestion.title), QString::fromStdString(kQuestion.text),
                                "Keep Running", "End Session & Quit"}));
}

TEST_F(AlertOnScreen, IsFoundAmongTheProgramsWindows) {
  show();
  auto* const program = QAccessible::queryAccessibleInterface(qApp);
  ASSERT_NE(program, nullptr);
  int found = 0;
  for (int index = 0; index < program->childCount(); ++index) {
    found += program->child(index)->role() == QAccessible::AlertMessage;
  }
  EXPECT_EQ(found, 1);
}

TEST_F(AlertOnScreen, OtherWindowsDoNothingUntilItIsAnswered) {
  QPushButton other;
  other.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&other));
  int clicks = 0;
  QObject::connect(&other, &QPushButton::clicked, [&clicks] { ++clicks; });
  const auto click = [&other] { QTest::mouseClick(other.windowHandle(), Qt::LeftButton, {}, QPoint(5, 5)); };
  show();
  click();
  EXPECT_EQ(clicks, 0);
  press(Qt::Key_Escape);
  ASSERT_TRUE(answered());
  click();
  EXPECT_EQ(clicks, 1);
}

TEST_F(AlertOnScreen, ComesToTheFrontInPlaceOfWindowsThatAreOpened) {
  show();
  const auto dashboard = interface().makeDashboardWindow();
  const auto settings = interface().makeSettingsWindow();
  dashboard->show({});
  settings->show({});
  EXPECT_FALSE(dashboard->visible());
  EXPECT_FALSE(settings->visible());
  EXPECT_TRUE(QTest::qWaitForWindowActive(&window()));
  press(Qt::Key_Escape);
  ASSERT_TRUE(answered());
  dashboard->show({});
  EXPECT_TRUE(dashboard->visible());
}

}  // namespace
}  // namespace nimbo
