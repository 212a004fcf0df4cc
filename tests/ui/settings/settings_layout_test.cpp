// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cstddef>
#include <set>

#include "ui/settings/settings_window_fixture.h"

namespace nimbo {
namespace {

constexpr double kCheckTextIndent = 23;  // the box and the room beside it

Rect frameOf(const SettingsControl& control) {
  return std::visit([](const auto& shown) { return shown.frame; }, control);
}

bool overlap(const Rect& one, const Rect& other) {
  return one.x < other.maxX() && other.x < one.maxX() && one.y < other.maxY() && other.y < one.maxY();
}

int linesOf(const std::string& text) { return 1 + static_cast<int>(std::ranges::count(text, '\n')); }

class SettingsLayoutTest : public SettingsWindowTest {
 protected:
  [[nodiscard]] const std::vector<SettingsPageContent>& pages() const { return window.content().pages; }

  template <class Control>
  [[nodiscard]] std::vector<Control> all(const SettingsPageContent& page) const {
    std::vector<Control> found;
    for (const auto& control : page.controls) {
      if (const auto* const wanted = std::get_if<Control>(&control)) found.push_back(*wanted);
    }
    return found;
  }

  /// With everything shown that takes room.
  void fillUp() {
    login.current = LoginItemStatus::requiresApproval;
    automaticUpdates.reset();
    widgetMessage = "Widget sharing unavailable. Install a signed build with its app group configured.";
    controller.syncIfVisible();
  }
};

TEST_F(SettingsLayoutTest, WindowHasItsTabsAbovePagesOfOneSize) {
  EXPECT_EQ(window.content().size, (Size{560, 680}));
  EXPECT_EQ(window.content().tabs.frame, (Rect{28, 20, 504, 28}));
  for (const auto& page : pages()) EXPECT_EQ(page.frame, (Rect{28, 68, 504, 588}));
}

TEST_F(SettingsLayoutTest, EverythingIsWithinItsPage) {
  fillUp();
  for (const auto& page : pages()) {
    for (const auto& control : page.controls) {
      const Rect frame = frameOf(control);
      EXPECT_GE(frame.x, 0);
      EXPECT_GE(frame.y, 0);
      EXPECT_LE(frame.maxX(), page.frame.width);
      EXPECT_LE(frame.maxY(), page.frame.height) << page.accessibleName;
      EXPECT_GT(frame.width, 0);
      EXPECT_GT(frame.height, 0);
    }
  }
}

TEST_F(SettingsLayoutTest, NothingOverlaps) {
  fillUp();
  for (const auto& page : pages()) {
    for (std::size_t one = 0; one < page.controls.size(); ++one) {
      for (std::size_t other = one + 1; other < page.controls.size(); ++other) {
        EXPECT_FALSE(overlap(frameOf(page.controls[one]), frameOf(page.controls[other])))
            << page.accessibleName << " " << one << " " << other;
      }
    }
  }
}

TEST_F(SettingsLayoutTest, ControlsComeInReadingOrder) {
  fillUp();
  for (const auto& page : pages()) {
    for (std::size_t index = 1; index < page.controls.size(); ++index) {
      const Rect before = frameOf(page.controls[index - 1]);
      const Rect frame = frameOf(page.controls[index]);
      EXPECT_TRUE(frame.y >= before.maxY() || frame.x >= before.maxX()) << page.accessibleName << " " << index;
    }
  }
}

TEST_F(SettingsLayoutTest, LinesHaveTheirHeight) {
  fillUp();
  for (const auto& page : pages()) {
    for (const auto& label : all<LabelContent>(page)) {
      EXPECT_GE(label.lines, linesOf(label.text)) << label.text;
      EXPECT_GE(label.frame.height, label.style.size * 1.3 * label.lines) << label.text;
    }
  }
}

TEST_F(SettingsLayoutTest, HeadingsLookAlike) {
  for (const auto& page : pages()) {
    const auto labels = all<LabelContent>(page);
    ASSERT_GE(labels.size(), 2U);
    EXPECT_EQ(labels[0].style, (TextStyle{20, FontWeight::semibold})) << page.accessibleName;
    EXPECT_EQ(labels[1].style, (TextStyle{13, FontWeight::regular, ColorRole::secondaryLabel})) << page.accessibleName;
    EXPECT_EQ(labels[0].frame, all<LabelContent>(pages()[0])[0].frame);
    EXPECT_EQ(labels[1].frame, all<LabelContent>(pages()[0])[1].frame);
  }
}

TEST_F(SettingsLayoutTest, PopUpsStandInOneColumnBesideTheirCaptions) {
  std::set<double> columns;
  std::set<double> captionEdges;
  for (const auto& page : pages()) {
    for (std::size_t index = 1; index < page.controls.size(); ++index) {
      const auto* const list = std::get_if<PopUpContent>(&page.controls[index]);
      if (list == nullptr) continue;
      const auto& caption = std::get<LabelContent>(page.controls[index - 1]);
      EXPECT_EQ(caption.text, list->accessibleName);
      EXPECT_EQ(caption.frame.y + caption.frame.height / 2, list->frame.y + list->frame.height / 2);
      EXPECT_EQ(list->frame.height, 26);
      EXPECT_EQ(list->frame.width, choice("preset").frame.width);
      columns.insert(list->frame.x);
      captionEdges.insert(caption.frame.x);
    }
  }
  EXPECT_EQ(columns.size(), 1U);
  EXPECT_EQ(captionEdges.size(), 1U);
}

TEST_F(SettingsLayoutTest, PopUpsBelowEachOtherKeepEqualDistances) {
  const auto lists = all<PopUpContent>(pages()[kGeneralPage]);
  ASSERT_EQ(lists.size(), 7U);
  for (std::size_t index = 2; index < lists.size(); ++index) {
    EXPECT_EQ(lists[index].frame.y - lists[index - 1].frame.y, lists[2].frame.y - lists[1].frame.y);
  }
}

TEST_F(SettingsLayoutTest, CategoriesShareARowOfTheColumn) {
  const Rect ai = check("menuAI").frame;
  const Rect memory = check("menuMemory").frame;
  const Rect awake = check("menuAwake").frame;
  EXPECT_EQ(ai.x, choice("preset").frame.x);
  EXPECT_EQ(ai.y, memory.y);
  EXPECT_EQ(ai.y, awake.y);
  EXPECT_EQ(memory.x - ai.x, awake.x - memory.x);
  EXPECT_LE(awake.maxX(), choice("preset").frame.maxX());
  EXPECT_EQ(check("compact").frame.x, ai.x);
  EXPECT_EQ(check("menuRotation").frame.x, ai.x);
}

TEST_F(SettingsLayoutTest, ExplanationsFollowTheTextOfTheirCheckBox) {
  int explained = 0;
  for (const auto& page : pages()) {
    for (std::size_t index = 1; index < page.controls.size(); ++index) {
      const auto* const box = std::get_if<CheckBoxContent>(&page.controls[index - 1]);
      const auto* const help = std::get_if<LabelContent>(&page.controls[index]);
      if (box == nullptr || help == nullptr || help->style.size != 11) continue;
      EXPECT_EQ(help->frame.x, box->frame.x + kCheckTextIndent) << help->text;
      EXPECT_EQ(help->style.color, ColorRole::secondaryLabel) << help->text;
      EXPECT_LE(help->frame.y - box->frame.maxY(), 4) << help->text;
      ++explained;
    }
  }
  EXPECT_EQ(explained, 5);
}

TEST_F(SettingsLayoutTest, SectionsHaveMoreRoomAboveThanRows) {
  for (const auto page : {kGeneralPage, kUsagePage}) {
    const auto& controls = pages()[page].controls;
    int sections = 0;
    for (std::size_t index = 2; index < controls.size(); ++index) {
      const auto* const label = std::get_if<LabelContent>(&controls[index]);
      if (label == nullptr || label->style.weight != FontWeight::semibold) continue;
      EXPECT_GE(label->frame.y - frameOf(controls[index - 1]).maxY(), 16) << label->text;
      ++sections;
    }
    EXPECT_EQ(sections, 1);
  }
}

TEST_F(SettingsLayoutTest, LoginNoteKeepsItsPlaceWhicheverItIs) {
  const auto before = check("updates").frame;
  login.current = LoginItemStatus::requiresApproval;
  controller.syncIfVisible();
  EXPECT_EQ(check("updates").frame, before);
}

TEST_F(SettingsLayoutTest, WhyAnUpdatesBoxIsDisabledStandsBesideItAndMovesNothing) {
  const auto below = window.find<ButtonContent>("checkUpdates")->frame;
  automaticUpdates.reset();
  controller.syncIfVisible();
  const auto labels = all<LabelContent>(pages()[kGeneralPage]);
  const auto why = std::ranges::find(labels, check("updates").toolTip, &LabelContent::text);
  ASSERT_NE(why, labels.end());
  EXPECT_EQ(why->frame.y + why->frame.height / 2, check("updates").frame.y + check("updates").frame.height / 2);
  EXPECT_EQ(window.find<ButtonContent>("checkUpdates")->frame, below);
}

TEST_F(SettingsLayoutTest, WidgetMessageOnlyMovesWhatIsBelowIt) {
  const auto memory = choice("memoryStyle").frame;
  const auto box = check("login").frame;
  widgetMessage = "Widget sharing unavailable.";
  controller.syncIfVisible();
  EXPECT_EQ(choice("memoryStyle").frame, memory);
  EXPECT_GT(check("login").frame.y, box.y);
}

}  // namespace
}  // namespace nimbo
