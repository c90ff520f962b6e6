// Documents and settings on the headless side: messages reach ShowMessage's record, and the
// environment stands in for the Shift key.
#include <sys/stat.h>
#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

#include "controls/page_setup.h"
#include "documents/effect_document.h"
#include "documents/settings.h"
#include "shell/messages.h"
#include "tests/support/value_dialog.h"

TEST(DocumentsHeadless, MessagesGoThroughShowMessage) {
  SetDocumentMessageShower(nullptr);
  WindowHandle dialog = CreateValueDialog();
  ASSERT_NE(dialog, nullptr);
  LoadDocument(dialog, (MakeTempFolder("gm5-posix-doc") + "absent.gm5").c_str());
  EXPECT_STREQ(LastShownMessage(), kDocumentOpenError);
  DialogDestroy(dialog);
}

TEST(DocumentsHeadless, ShiftComesFromTheEnvironmentAndSettingsFromXdg) {
  const std::string base = MakeTempFolder("gm5-posix-xdg");
  setenv("XDG_CONFIG_HOME", base.c_str(), 1);
  SetSettingsFolder(nullptr);
  char path[512];
  ASSERT_TRUE(SettingsFolderPath("rfdplgm5.ini", path, sizeof path));
  EXPECT_EQ(std::string(path), base + "/Cobalt Lanternary/rfdplgm5.ini");
  // Finding the path made no folder; the one the settings are saved into is made here.
  struct stat info;
  EXPECT_NE(stat((base + "/Cobalt Lanternary").c_str(), &info), 0);
  ASSERT_EQ(mkdir((base + "/Cobalt Lanternary").c_str(), 0755), 0);
  ResetSettings();
  *SettingInteger("MainEffect") = 3;
  SaveSettings();
  ResetSettings();
  setenv("GM5_SHIFT", "1", 1);
  EXPECT_TRUE(SettingsShiftHeld());
  LoadSettings();
  EXPECT_EQ(*SettingInteger("MainEffect"), 12);
  unsetenv("GM5_SHIFT");
  LoadSettings();
  EXPECT_EQ(*SettingInteger("MainEffect"), 3);
  SetSettingsFolder(base.c_str());
  unsetenv("XDG_CONFIG_HOME");
  ResetSettings();
}
