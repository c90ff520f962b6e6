// Effect pages on the headless dialog model: the page layout and its resource script, EffectInit
// for every row, and ShowEffectPage.
#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <sstream>
#include <string>

#include "controls/page_setup.h"
#include "controls/page_layout.h"
#include "documents/settings.h"
#include "platform/posix/headless_dialog.h"
#include "shell/effect_pages.h"
#include "shell/effect_table.h"
#include "tests/support/alloc_sweep.h"
#include "tests/support/effect_page_checks.h"

// A page shows exactly its listed page controls and leaves the main controls (below 100, or from
// 1199 on) alone; a row past the end has no list, so every page control is hidden.
TEST(EffectPage, ShowsTheListedControlsAndLeavesMainControlsAlone) {
  WindowHandle dialog = HeadlessDialogCreate();
  const int32_t ids[] = {58, 99, 100, 10100, 124, 134, 10134, 1198, 1199, 11198};
  for (int32_t id : ids) HeadlessDialogAddControl(dialog, id, id == 99 ? 0 : 1);
  const int32_t page[] = {100, 10100, 124, 0};
  ShowPageControls(dialog, page);
  const std::set<int32_t> shown = {58, 1199, 100, 10100, 124};
  for (int32_t id : ids)
    EXPECT_EQ(DialogItemVisible(DialogItem(dialog, id)), shown.count(id)) << id;
  ShowEffectPage(dialog, 500);
  for (int32_t id : ids)
    EXPECT_EQ(DialogItemVisible(DialogItem(dialog, id)), id == 58 || id == 1199) << id;
  HeadlessDialogDestroy(dialog);
}

// The committed resource script is the one the page tables give today: a table changed without
// running gm5_page_rc fails here.
TEST(EffectPage, CommittedResourceScriptFollowsTheTables) {
  const std::string path = GM5_SOURCE_ROOT;
  std::ifstream file(path + "resources/effect_pages.rc", std::ios::binary);
  ASSERT_TRUE(file) << path;
  std::stringstream committed;
  committed << file.rdbuf();
  std::string fresh;
  ASSERT_EQ(FormatPageResources(&fresh), 1);
  EXPECT_EQ(committed.str(), fresh) << "run build/native/bin/gm5_page_rc resources/effect_pages.rc";
}

TEST(EffectPage, InitMakesEveryPageHiddenWithItsSettings) {
  MovePageSettingsFromDefaults();
  InstallControlKinds();
  WindowHandle dialog = DialogCreate();
  WindowHandle box = DialogAddControl(dialog, 58, kControlComboList, "");
  ASSERT_EQ(InitEffectPages(dialog, box), 1);
  ASSERT_EQ(DialogRowCount(box), kEffectCount);
  EXPECT_TRUE(PageTwinsMatchTables(dialog));
  EXPECT_TRUE(EachRowShowsOnlyItsPage(dialog));
  DialogDestroy(dialog);
  ResetSettings();
}

TEST(EffectPage, InitFailsWithoutItsPageOrMemory) {
  InstallControlKinds();
  WindowHandle dialog = DialogCreate();
  EXPECT_EQ(DialogClonePage(dialog, kEffectPageBase + kEffectCount), 0);
  EXPECT_EQ(InitEffectPage(dialog, kEffectCount), 0);
  EXPECT_EQ(DialogClonePage(nullptr, kEffectPageBase), 0);
  DialogDestroy(dialog);
  // Each row is named just before its page is made: a page that fails leaves the rows after it
  // unnamed, and the last name is the failing row's.
  dialog = DialogCreate();
  WindowHandle box = DialogAddControl(dialog, 58, kControlComboList, "");
  MovableFailAllocation(1);
  EXPECT_EQ(InitEffectPages(dialog, box), 0);
  MovableFailAllocation(0);
  const int named = DialogRowCount(box);
  EXPECT_GE(named, 1);
  EXPECT_LT(named, kEffectCount);
  char last[64] = "";
  DialogSetSelection(box, named - 1);
  DialogGetText(box, last, sizeof last);
  EXPECT_STREQ(last, EffectTable[named - 1].name);
  DialogDestroy(dialog);
  // Simple has material buttons and pickers, Arrows five colour buttons and its cross of checks.
  for (int32_t style : {0, 7})
    EXPECT_TRUE(SweepAllocationFailures([style] {
      WindowHandle page = DialogCreate();
      const int made = InitEffectPage(page, style);
      DialogDestroy(page);
      return made;
    })) << style;
}
