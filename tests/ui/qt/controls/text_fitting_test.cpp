// SPDX-License-Identifier: MIT
#include "ui/qt/controls/text_fitting.h"

#include <QPainter>
#include <cmath>

#include "ui/qt/qt_test.h"

namespace nimbo {
namespace {

class TextFitting : public QtTest {
 protected:
  static std::vector<QString> texts(const std::vector<FittedText>& lines) {
    std::vector<QString> result;
    for (const auto& line : lines) result.push_back(line.text);
    return result;
  }
  static QFont font(double size) { return fontFor(size, FontWeight::regular); }
};

TEST_F(TextFitting, PointsAreLogicalPixels) {
  EXPECT_EQ(font(13).pixelSize(), 13);
  EXPECT_EQ(fontFor(38, FontWeight::semibold).weight(), QFont::DemiBold);
  EXPECT_EQ(fontFor(11, FontWeight::medium).weight(), QFont::Medium);
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

TEST_F(TextFitting, TextNeverShrinksBelowTenPoints) {
  EXPECT_EQ(fitText("RECENT USAGE", font(11), false, 10).font.pixelSize(), 10);
  EXPECT_EQ(fitText("RECENT USAGE", font(9), false, 10).font.pixelSize(), 9);
  EXPECT_EQ(wrapText(QString(200, 'm'), font(10), 100, 2)[0].font.pixelSize(), 10);
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

TEST_F(TextFitting, ShortTextWrapsToOneLine) {
  EXPECT_EQ(texts(wrapText("Until you stop it.", font(12), 500, 2)), std::vector<QString>{"Until you stop it."});
}

TEST_F(TextFitting, LongTextBreaksBetweenWordsAndKeepsItsSize) {
  const QString first = "macOS couldn’t keep your Mac awake";
  const auto lines = wrapText(first + " (error 95).", font(12), textWidth(first, font(12), false) + 4, 2);
  EXPECT_EQ(texts(lines), (std::vector<QString>{first, "(error 95)."}));
  EXPECT_EQ(lines[1].font.pixelSize(), 12);
}

TEST_F(TextFitting, TextWithSlightlyTooManyLinesShrinksAsAWhole) {
  const QString text = "one two three four five six seven eight nine ten";
  const double width = textWidth(text, font(20), false) / 2 - 2;
  const auto lines = wrapText(text, font(20), width, 2);
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_EQ(texts(lines)[0] + ' ' + texts(lines)[1], text);
  EXPECT_LT(lines[0].font.pixelSize(), 20);
  EXPECT_EQ(lines[0].font.pixelSize(), lines[1].font.pixelSize());
}

TEST_F(TextFitting, TextMuchTooLongEndsInEllipsisOnItsLastLine) {
  QString text;
  for (int word = 0; word < 40; ++word) text += "word" + QString::number(word) + ' ';
  const auto lines = wrapText(text, font(12), 120, 3);
  ASSERT_EQ(lines.size(), 3U);
  EXPECT_EQ(lines[0].font.pixelSize(), 10);
  EXPECT_FALSE(lines[1].text.contains(QChar(0x2026)));
  EXPECT_TRUE(lines[2].text.endsWith(QChar(0x2026))) << lines[2].text.toStdString();
  for (const auto& line : lines) EXPECT_LE(textWidth(line.text, line.font, false), 120) << line.text.toStdString();
}

TEST_F(TextFitting, LineBreaksOfTheTextAreKept) {
  EXPECT_EQ(texts(wrapText("first\nsecond", font(12), 500, 3)), (std::vector<QString>{"first", "second"}));
}

TEST_F(TextFitting, WordWiderThanTheFrameIsBroken) {
  const auto lines = wrapText(QString(60, 'm'), font(12), 100, 10);
  EXPECT_GT(lines.size(), 3U);
  for (const auto& line : lines) EXPECT_LE(textWidth(line.text, line.font, false), 100);
}

TEST_F(TextFitting, NothingToWrapGivesNoText) {
  for (const auto& line : wrapText("", font(12), 100, 2)) EXPECT_EQ(line.text, "");
}

TEST_F(TextFitting, LinesKeepTheirDistanceUnlessTheFrameIsTooLow) {
  const double natural = std::ceil(QFontMetricsF(font(12)).lineSpacing());
  EXPECT_EQ(linePitch(font(12), 100, 2), natural);
  EXPECT_EQ(linePitch(font(12), 24, 2), 12);
  EXPECT_EQ(linePitch(font(12), 24, 0), natural) << "no lines at all";
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
