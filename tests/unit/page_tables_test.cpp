#include "controls/page_tables.h"

#include <set>
#include <string>

#include <gtest/gtest.h>

#include "controls/page_layout.h"
#include "controls/page_setup.h"
#include "documents/settings.h"
#include "shell/effect_table.h"

TEST(PageTables, EachRowListsItsControlsLabelsAndUpdownsAndNothingElse) {
  for (int32_t row = 0; row < kEffectCount; ++row) {
    const PageTable& page = kPageTables[EffectStyle[row]];
    std::set<int32_t> expected;
    for (int32_t i = 0; i < page.count; ++i) {
      const PageControl& c = page.controls[i];
      expected.insert(c.id);
      if (HasLabel(c)) expected.insert(c.id + 1);
      if (HasUpDown(c)) expected.insert(c.id + 10000);
    }
    std::set<int32_t> listed;
    for (const int32_t* id = EffectTable[row].controls; id && *id; ++id) {
      EXPECT_TRUE(IsPageControlId(*id)) << row << " " << *id;
      listed.insert(*id);
    }
    EXPECT_EQ(listed, expected) << EffectTable[row].name;
    // Pages have ranges of their own: no id of this page is in another row's list.
    for (int32_t other = 0; other < kEffectCount; ++other)
      for (const int32_t* id = EffectTable[other].controls; other != row && id && *id; ++id)
        EXPECT_EQ(expected.count(*id), 0u) << row << " " << other << " " << *id;
  }
}

TEST(PageTables, EveryKeyOfATableIsASettingOfTheRightForm) {
  auto check = [](const PageTable& table) {
    for (int32_t i = 0; i < table.count; ++i) {
      const PageControl& c = table.controls[i];
      if (!c.key) continue;
      const SettingEntry* e = FindSetting(c.key);
      ASSERT_NE(e, nullptr) << c.key;
      const bool text = c.kind == kControlTextField || c.kind == kControlFontBox ||
                        c.kind == kControlAnimationPicker;
      EXPECT_EQ((e->flags & kSettingString) != 0, text) << c.key;
    }
  };
  check(kMainDialogTable);
  for (const PageTable& page : kPageTables) check(page);
}


// A colour's enable check (the "Enable" check that follows it in the table) stands on the colour's
// row, to its right and clear of it, on the pages wide enough for it (Snow and Arrows among
// them); elsewhere it stands under its colour. No two windows of a page overlap either way.
TEST(PageLayout, EnableChecksStandBesideTheirColours) {
  PagePlacement placed[kPageMaxPlacements];
  for (const PageTable& page : kPageTables) {
    SCOPED_TRACE(page.style);
    const int32_t n = LayoutPage(page, placed, kPageMaxPlacements);
    ASSERT_GT(n, 0);
    auto find = [&](int32_t id) -> const PagePlacement* {
      for (int32_t i = 0; i < n; ++i)
        if (placed[i].id == id && placed[i].kind != kControlLabel) return &placed[i];
      return nullptr;
    };
    int beside = 0, checks = 0;
    for (int32_t i = 0; i + 1 < page.count; ++i) {
      const PageControl& colour = page.controls[i];
      const PageControl& check = page.controls[i + 1];
      if (colour.kind != kControlColourButton || check.kind != kControlCheckBox ||
          std::string(check.caption) != "Enable")
        continue;
      const PagePlacement* c = find(colour.id);
      const PagePlacement* k = find(check.id);
      ASSERT_TRUE(c && k) << check.id;
      ++checks;
      const bool sameRow = k->y >= c->y && k->y + k->cy <= c->y + c->cy && k->x >= c->x + c->cx;
      const bool under = k->y >= c->y + c->cy && k->y - (c->y + c->cy) <= 4 && k->x < c->x + c->cx;
      EXPECT_TRUE(sameRow || under) << check.id;
      beside += sameRow;
    }
    if (page.style == 2 || page.style == 7) EXPECT_EQ(beside, 4);
    if (checks) EXPECT_TRUE(beside == 0 || beside == checks);
    for (int32_t a = 0; a < n; ++a)
      for (int32_t b = a + 1; b < n; ++b) {
        const PagePlacement &p = placed[a], &q = placed[b];
        const bool overlap = p.x < q.x + q.cx && q.x < p.x + p.cx && p.y < q.y + q.cy &&
                             q.y < p.y + p.cy;
        EXPECT_FALSE(overlap) << p.id << " " << q.id;
      }
  }
}
