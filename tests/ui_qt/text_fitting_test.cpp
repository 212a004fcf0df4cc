// SPDX-License-Identifier: MIT
#include "ui/qt/text_fitting.h"

#include <QPainter>

#include "qt_test.h"

namespace nimbo {
namespace {

class TextFitting : public QtTest {
 protected:
  static QFont font(double size) { return fontFor(QApplication::font(), size, FontWeight::regular); }
};

TEST_F(TextFitting, PointsAreLogicalPixels) {
  EXPECT_EQ(font(13).pixelSize(), 13);
  EXPECT_EQ(fontFor(QApplication::font(), 38, FontWeight::semibold).weight(), QFont::DemiBold);
  EXPECT_EQ(fontFor(QApplication::font(), 11, FontWeight::medium).weight(), QFont::Medium);
}

TEST_F(TextFitting, RoomyFrameLeavesTextAndSizeAlone) {
  const auto fitted = fitText("App memory", font(13), false, 500);
  EXPECT_EQ(fitted.text, "App memory");
  EXPECT_EQ(fitted.font.pixelSize(), 13);
}

TEST_F(TextFitting, SlightlyNarrowFrameShrinksTheFontOnly) {
  const QString text = "Physical footprint";
  const double width = textWidth(text, font(20), false);
  const auto fitted = fitText(text, font(20), false, width - 2);
  EXPECT_EQ(fitted.text, text);
  EXPECT_LT(fitted.font.pixelSize(), 20);
  EXPECT_LE(textWidth(fitted.text, fitted.font, false), width - 2);
}

TEST_F(TextFitting, MuchTooNarrowFrameEndsInEllipsisAndStillFits) {
  const QString text = "A process with a remarkably long name";
  const auto fitted = fitText(text, font(13), false, 80);
  EXPECT_TRUE(fitted.text.endsWith(QChar(0x2026))) << fitted.text.toStdString();
  EXPECT_TRUE(text.startsWith(fitted.text.chopped(1)));
  EXPECT_EQ(fitted.font.pixelSize(), 11);
  EXPECT_LE(textWidth(fitted.text, fitted.font, false), 80);
}

TEST_F(TextFitting, SmallTextNeverShrinksBelowEightPoints) {
  EXPECT_EQ(fitText("RECENT USAGE", font(9), false, 10).font.pixelSize(), 8);
  EXPECT_EQ(fitText("RECENT USAGE", font(7), false, 10).font.pixelSize(), 7);
}

TEST_F(TextFitting, NoRoomAtAllIsHarmless) {
  EXPECT_LE(textWidth(fitText("70%", font(38), true, 0).text, font(38), true), textWidth("70%", font(38), true));
  EXPECT_EQ(fitText("", font(13), true, 0).text, "");
}

TEST_F(TextFitting, MonospacedDigitsTakeEqualRoom) {
  EXPECT_DOUBLE_EQ(textWidth("111.1%", font(38), true), textWidth("888.8%", font(38), true));
}

TEST_F(TextFitting, NarrowDigitsAreCentredInTheRoomOfTheWidest) {
  const auto advance = [](const QString& text) { return text == "1" ? 4.0 : 8.0 * static_cast<double>(text.size()); };
  const auto pieces = placeMonospaced("CPU 10%", advance);
  ASSERT_EQ(pieces.size(), 5U);
  EXPECT_EQ(pieces[0].text, "CPU ");
  EXPECT_EQ(pieces[0].x, 0);
  EXPECT_EQ(pieces[1].text, "1");
  EXPECT_EQ(pieces[1].x, 34);
  EXPECT_EQ(pieces[2].text, "0");
  EXPECT_EQ(pieces[2].x, 40);
  EXPECT_EQ(pieces[3].text, "%");
  EXPECT_EQ(pieces[3].x, 48);
  EXPECT_EQ(pieces[4].text, "");
  EXPECT_EQ(pieces[4].x, 56);
}

TEST_F(TextFitting, RightAlignedTextEndsAtTheFrame) {
  QImage image(200, 40, QImage::Format_RGB32);
  image.fill(Qt::white);
  QPainter painter(&image);
  drawText(painter, image.rect(), Qt::AlignRight, {"HHH", font(20), false});
  painter.end();
  int left = image.width();
  int right = 0;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      if (qGray(image.pixel(x, y)) >= 128) continue;
      left = std::min(left, x);
      right = std::max(right, x);
    }
  }
  EXPECT_GT(right, 190);
  EXPECT_GT(left, 100);
}

}  // namespace
}  // namespace nimbo
