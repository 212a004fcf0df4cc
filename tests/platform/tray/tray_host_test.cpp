// SPDX-License-Identifier: MIT
#include "platform/linux/tray/tray_host.h"

#include <gtest/gtest.h>

namespace nimbo {
namespace {

TEST(ToolTipText, OneLineIsTheTitle) {
  const auto text = toolTipText("Keep Awake is on", ToolTipTitle::markup);
  EXPECT_EQ(text.title, "Keep Awake is on");
  EXPECT_EQ(text.subtitle, "");
}

TEST(ToolTipText, RestStartsAtTheFirstLineWithText) {
  const auto text = toolTipText("AI usage · bars top to bottom\n\nOpenAI · Codex\n\nlast", ToolTipTitle::markup);
  EXPECT_EQ(text.title, "AI usage · bars top to bottom");
  EXPECT_EQ(text.subtitle, "OpenAI · Codex\n\nlast");
}

TEST(ToolTipText, OnlyLineBreaksLeaveTheSubtitleEmpty) {
  EXPECT_EQ(toolTipText("a\n\n", ToolTipTitle::plain).subtitle, "");
  EXPECT_EQ(toolTipText("\n", ToolTipTitle::plain).title, "");
  EXPECT_EQ(toolTipText("", ToolTipTitle::plain).title, "");
}

TEST(ToolTipText, MarkupTitleIsEscaped) {
  EXPECT_EQ(toolTipText("a & <b>", ToolTipTitle::markup).title, "a &amp; &lt;b&gt;");
}

TEST(ToolTipText, PlainTitleIsNotEscapedButTheSubtitleIs) {
  const auto text = toolTipText("a & b\nc & d", ToolTipTitle::plain);
  EXPECT_EQ(text.title, "a & b");
  EXPECT_EQ(text.subtitle, "c &amp; d");
}

TEST(ToolTipText, BytesThatAreNotUtf8AreReplaced) {
  const auto text = toolTipText("a\xff\nb\xff", ToolTipTitle::plain);
  EXPECT_EQ(text.title, "a\uFFFD");
  EXPECT_EQ(text.subtitle, "b\uFFFD");
}

TEST(ToolTipText, PanelsThatShowTitlesPlainAreKnownByTheirDesktop) {
  EXPECT_EQ(trayHostOn("XFCE").toolTipTitle, ToolTipTitle::plain);
  EXPECT_EQ(trayHostOn("KDE").toolTipTitle, ToolTipTitle::plain);
  EXPECT_EQ(trayHostOn("LXQt").toolTipTitle, ToolTipTitle::plain);
  EXPECT_EQ(trayHostOn("MATE").toolTipTitle, ToolTipTitle::markup);
  EXPECT_EQ(trayHostOn("sway").toolTipTitle, ToolTipTitle::markup);
  EXPECT_EQ(trayHostOn("").toolTipTitle, ToolTipTitle::markup);
}

}  // namespace
}  // namespace nimbo
