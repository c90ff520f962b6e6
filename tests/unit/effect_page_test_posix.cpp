// ShowEffectPage on the headless dialog model.
#include <gtest/gtest.h>

#include "platform/posix/headless_dialog.h"
#include "shell/effect_table.h"

TEST(EffectPage, ShowsTheListedControlsAndLeavesMainControlsAlone) {
  WindowHandle dialog = HeadlessDialogCreate();
  const int32_t ids[] = {58, 99, 100, 10100, 124, 134, 10134, 1198, 1199, 11198};
  for (int32_t id : ids) HeadlessDialogAddControl(dialog, id, id == 99 ? 0 : 1);

  const int32_t page[] = {100, 10100, 124, 0};
  ShowPageControls(dialog, page);
  for (int32_t id : ids) {
    const bool shown = id == 58 || id == 1199 || id == 100 || id == 10100 || id == 124;
    EXPECT_EQ(DialogItemVisible(DialogItem(dialog, id)), shown ? 1 : 0) << id;
  }

  // A row past the end has no list: every page control is hidden, main ones keep their state.
  ShowEffectPage(dialog, 500);
  EXPECT_EQ(DialogItemVisible(DialogItem(dialog, 58)), 1);
  EXPECT_EQ(DialogItemVisible(DialogItem(dialog, 99)), 0);
  EXPECT_EQ(DialogItemVisible(DialogItem(dialog, 100)), 0);
  EXPECT_EQ(DialogItemVisible(DialogItem(dialog, 10100)), 0);
  HeadlessDialogDestroy(dialog);
}
