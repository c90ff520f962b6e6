#include "controls/page_tables.h"

#include <set>
#include <string>

#include <gtest/gtest.h>

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

