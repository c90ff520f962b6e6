#include "controls/value_controls.h"

#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "controls/direction_picker.h"
#include "controls/page_setup.h"
#include "documents/settings.h"
#include "shell/host_interface.h"
#include "tests/support/alloc_sweep.h"
#include "tests/support/value_dialog.h"

namespace {

class ValueControls : public testing::Test {
 protected:
  void SetUp() override {
    ResetSettings();
    dialog_ = CreateValueDialog();
    ASSERT_NE(dialog_, nullptr);
    DialogKillTimer(dialog_, kUpdateTimerId);
  }
  void TearDown() override {
    DialogDestroy(dialog_);
    SetColourChooser(nullptr);
    ResetSettings();
  }
  WindowHandle Item(int32_t id) { return DialogItem(dialog_, id); }
  void SetText(int32_t id, const char* text) { DialogSetText(Item(id), text); }
  std::string Line(int32_t id) {
    char line[2048];
    FormatControlLine(Item(id), line, sizeof line);
    return line;
  }
  WindowHandle dialog_ = nullptr;
};

uint32_t g_offered = 0;
uint8_t g_swatches[768];
int ChooseTeal(WindowHandle, uint32_t* colour, const uint8_t* swatches) {
  g_offered = *colour;
  std::memcpy(g_swatches, swatches, sizeof g_swatches);
  *colour = 0x808000;
  return 1;
}
int Cancel(WindowHandle, uint32_t*, const uint8_t*) {
  return 0;
}

}  // namespace

TEST(DlgItemInt, TranslatesAsTheDialogManagerDoes) {
  int ok = 0;
  EXPECT_EQ(ParseDlgItemInt("  42abc", 0, &ok), 42u);
  EXPECT_EQ(ok, 1);
  EXPECT_EQ(static_cast<int32_t>(ParseDlgItemInt("-12", 1, &ok)), -12);
  EXPECT_EQ(ParseDlgItemInt("-12", 0, &ok), 0u);
  EXPECT_EQ(ok, 0);
  EXPECT_EQ(ParseDlgItemInt("", 0, &ok), 0u);
  EXPECT_EQ(ok, 0);
  EXPECT_EQ(ParseDlgItemInt("4294967295", 0, &ok), 4294967295u);
  EXPECT_EQ(ParseDlgItemInt("4294967296", 0, &ok), 0u);
  EXPECT_EQ(ParseDlgItemInt("2147483648", 1, &ok), 0u);
  EXPECT_EQ(static_cast<int32_t>(ParseDlgItemInt("-2147483648", 1, &ok)), INT32_MIN);
}

TEST_F(ValueControls, ReadDlgValueClampsToTheUpdownRange) {
  SetText(108, "300");  // Fill opacity, 0..255
  EXPECT_EQ(ReadDlgValue(dialog_, 108), 255);
  char text[16];
  DialogGetText(Item(108), text, sizeof text);
  EXPECT_STREQ(text, "300");
  SetText(116, "");  // Shadow offset, 1..255
  EXPECT_EQ(ReadDlgValue(dialog_, 116), 1);
  SetText(108, "");
  EXPECT_EQ(ReadDlgValue(dialog_, 108), 0);
  SetText(10000 + 108, "junk");  // no range: 0..100
  SetText(108, "150");
  EXPECT_EQ(ReadDlgValue(dialog_, 108), 100);
  SetText(10000 + 108, "-50,50,0");  // a negative minimum reads the edit as signed
  SetText(108, "-20");
  EXPECT_EQ(ReadDlgValue(dialog_, 108), -20);
  SetText(10000 + 108, "10");  // a scan that stops early keeps min and the default max
  SetText(108, "500");
  EXPECT_EQ(ReadDlgValue(dialog_, 108), 100);
}

TEST_F(ValueControls, ControlsStartFromTheirSettingsAndStoreChanges) {
  EXPECT_EQ(ReadDlgValue(dialog_, 114), 20);   // Style000Soft's default overrides the updown's 10
  EXPECT_EQ(ReadDlgValue(dialog_, 230), 255);  // keyless: the updown's default
  SetText(112, "40000");
  DialogNotify(dialog_, 112, 0x300);
  EXPECT_EQ(*SettingInteger("Style000Frames"), 32760);
  DialogSetCheck(Item(123), 0);
  DialogNotify(dialog_, 123, 0);
  EXPECT_EQ(*SettingInteger("Style000OutlineEnable"), 0);
  DialogSetSelection(Item(306), 3);
  DialogNotify(dialog_, 306, 1);  // not a selection change: nothing stored
  EXPECT_EQ(*SettingInteger("Style004Rotation"), 22);
  DialogNotify(dialog_, 306, kComboSelectionChanged);
  EXPECT_EQ(*SettingInteger("Style004Rotation"), 3);
}

TEST_F(ValueControls, ChangesFromId50OnRestartTheUpdateTimer) {
  SetText(11, "30");
  DialogKillTimer(dialog_, kUpdateTimerId);
  DialogNotify(dialog_, 11, 0);
  EXPECT_EQ(*SettingInteger("MainDelay"), 30);
  EXPECT_EQ(DialogTimerPeriod(dialog_, kUpdateTimerId), 0u);
  DialogNotify(dialog_, 57, 0);
  EXPECT_EQ(DialogTimerPeriod(dialog_, kUpdateTimerId), 250u);
  *SettingInteger("UpdateDelay") = 90;
  DialogNotify(dialog_, 122, 0);
  EXPECT_EQ(DialogTimerPeriod(dialog_, kUpdateTimerId), 90u);
}

TEST_F(ValueControls, AnEmptyTextDisablesBuildAndAComboChoiceKeepsItDisabled) {
  SetText(52, "");
  DialogNotify(dialog_, 52, 0x300);
  EXPECT_FALSE(DialogItemEnabled(Item(1)));
  EXPECT_STREQ(SettingString("MainText"), "");
  DialogSetSelection(Item(13), 2);
  DialogNotify(dialog_, 13, kComboSelectionChanged);
  EXPECT_FALSE(DialogItemEnabled(Item(1)));
  SetText(52, "Hi");
  DialogNotify(dialog_, 52, 0x300);
  EXPECT_TRUE(DialogItemEnabled(Item(1)));
}

TEST_F(ValueControls, ColourButtonsStoreOnlyAChosenColour) {
  DialogNotify(dialog_, 106, 0);  // no host to ask: as if cancelled
  EXPECT_EQ(*SettingInteger("Style000OutlineColor"), 3355443);
  SetColourChooser(Cancel);
  DialogNotify(dialog_, 106, 0);
  EXPECT_EQ(*SettingInteger("Style000OutlineColor"), 3355443);
  EXPECT_EQ(DialogTimerPeriod(dialog_, kUpdateTimerId), 0u);
  SetColourChooser(ChooseTeal);
  DialogNotify(dialog_, 106, 0);
  EXPECT_EQ(g_offered, 3355443u);
  const uint8_t entry45[3] = {36, 108, 85};  // (r 1 * 8 + g 3) * 4 + k 1
  EXPECT_EQ(std::memcmp(g_swatches + 45 * 3, entry45, 3), 0);
  EXPECT_EQ(g_swatches[767], 255);
  EXPECT_EQ(*SettingInteger("Style000OutlineColor"), 0x808000);
  EXPECT_EQ(Line(106), "CLRBTN106=8421376");
  EXPECT_EQ(DialogTimerPeriod(dialog_, kUpdateTimerId), 250u);
}

TEST_F(ValueControls, AnUpdownCommandReadsWithItsOwnId) {
  // The partner of an updown's id doesn't exist, so the range is 0..100 and its own text
  // "0,255,255" reads as 0.
  DialogNotify(dialog_, 10108, 0);
  EXPECT_EQ(*SettingInteger("Style000FillOpacity"), 0);
}

TEST_F(ValueControls, LinesOfEachKind) {
  EXPECT_EQ(Line(112), "SPNBTN112=64");
  EXPECT_EQ(Line(123), "CHKBOX123=1");
  EXPECT_EQ(Line(52), "TXTFLD52=This space for rent...");
  EXPECT_EQ(Line(13), "CMBBOX13=6");
  EXPECT_EQ(Line(120), "SDWDIR120=7");
  EXPECT_EQ(Line(100), "");  // material buttons write their own lines elsewhere
  SetText(52, std::string(1500, 'w').c_str());
  EXPECT_EQ(Line(52), "TXTFLD52=" + std::string(1024, 'w'));
  EXPECT_EQ(TakeControlLine(Item(112), "chkbox112=5"), 0);
  EXPECT_EQ(TakeControlLine(Item(112), "SPNBTN112 64"), 0);
  EXPECT_EQ(TakeControlLine(Item(112), "spnbtn112= ==99999"), 1);
  EXPECT_EQ(*SettingInteger("Style000Frames"), 32760);
  EXPECT_EQ(TakeControlLine(Item(53), "FNTBOX53=courier"), 1);
  EXPECT_STREQ(SettingString("MainFontName"), "");  // no rows to choose from yet
  AddTestFonts(dialog_);
  EXPECT_EQ(TakeControlLine(Item(53), "FNTBOX53=courier"), 1);
  EXPECT_STREQ(SettingString("MainFontName"), "Courier New");
}

// Kinds that no table uses yet: a signed spin edit, a list box and the horizontal-or-vertical
// picker, on a dialog of their own.
TEST(ValueControlKinds, SignedSpinListBoxAndHvPickerKeepTheirValues) {
  WindowHandle dialog = DialogCreate();
  ASSERT_NE(dialog, nullptr);
  WindowHandle spin = DialogAddControl(dialog, 700, kControlSignedSpinEdit, "");
  DialogAddControl(dialog, 10700, kControlUpDown, "-90,90,0");
  WindowHandle list = DialogAddControl(dialog, 702, kControlListBoxList, "");
  WindowHandle picker = DialogAddControl(dialog, 704, kControlScrollHVPicker, "");
  for (const char* row : {"one", "two", "three"}) DialogAddRow(list, row);
  char angle[kSettingTextSize] = "-45";
  int32_t row = 2, way = 1;
  BindControl(spin, angle);
  BindControl(list, &row);
  BindControl(picker, &way);
  char line[64];
  FormatControlLine(spin, line, sizeof line);
  EXPECT_STREQ(line, "SPNSGN700=-45");
  FormatControlLine(list, line, sizeof line);
  EXPECT_STREQ(line, "CMBBOX702=2");
  FormatControlLine(picker, line, sizeof line);
  EXPECT_STREQ(line, "SCRLHV704=1");
  EXPECT_EQ(TakeControlLine(spin, "SPNSGN700=-200"), 1);
  EXPECT_STREQ(angle, "-90");
  EXPECT_EQ(TakeControlLine(list, "CMBBOX702=0"), 1);
  EXPECT_EQ(row, 0);
  DialogPickerClick(picker, 5, 30);
  EXPECT_EQ(way, 0);
  DialogDestroy(dialog);
}

TEST(ValueControlKinds, AControlOfAResourceTakesItsKindLater) {
  WindowHandle dialog = DialogCreate();
  ASSERT_NE(dialog, nullptr);
  WindowHandle field = DialogAddControl(dialog, 52, kControlOther, "Hello");
  char line[64];
  EXPECT_EQ(FormatControlLine(field, line, sizeof line), 0u);
  DialogSetControlKind(field, kControlTextField);
  EXPECT_EQ(DialogControlKind(field), kControlTextField);
  EXPECT_TRUE(DialogWriteLine(field, nullptr) == 0);  // no file, no line
  FormatControlLine(field, line, sizeof line);
  EXPECT_STREQ(line, "TXTFLD52=Hello");
  EXPECT_EQ(DialogReadLine(field, "TXTFLD52=Bye"), 1);
  DialogGetText(field, line, sizeof line);
  EXPECT_STREQ(line, "Bye");
  DialogDestroy(dialog);
}

TEST_F(ValueControls, PickerCellsFollowTheGrid) {
  const PickerShape* shadow = FindPickerShape(kControlShadowPicker);
  EXPECT_EQ(PickerCellAt(shadow, 24, 24), 0);
  EXPECT_EQ(PickerCellAt(shadow, 25, 25), -1);
  EXPECT_EQ(PickerCellAt(shadow, 74, 30), 3);
  EXPECT_EQ(PickerCellAt(shadow, 0, 30), 4);
  const PickerShape* hv = FindPickerShape(kControlScrollHVPicker);
  EXPECT_EQ(PickerCellAt(hv, 30, 5), 1);
  EXPECT_EQ(PickerCellAt(hv, 5, 30), 0);
  EXPECT_EQ(PickerCellAt(hv, 5, 5), -1);
  const PickerShape* four = FindPickerShape(kControlScroll4Picker);
  EXPECT_EQ(PickerCellAt(four, 30, 5), 0);
  EXPECT_EQ(PickerCellAt(four, 30, 70), 3);
}

TEST_F(ValueControls, PickersSelectOnClickAndTakeLinesWithoutStoring) {
  WindowHandle picker = Item(120);
  DialogPickerClick(picker, 10, 60);
  int32_t value = -1;
  EXPECT_TRUE(DialogPickerValue(picker, &value));
  EXPECT_EQ(value, 5);
  EXPECT_EQ(*SettingInteger("Style000ShadowDirection"), 5);
  EXPECT_EQ(DialogTimerPeriod(dialog_, kUpdateTimerId), 250u);
  DialogPickerClick(picker, 30, 30);  // the centre: nothing changes
  EXPECT_TRUE(DialogPickerValue(picker, &value));
  EXPECT_EQ(value, 5);
  EXPECT_EQ(DialogReadLine(picker, "sdwdir120=9"), 1);
  EXPECT_TRUE(DialogPickerValue(picker, &value));
  EXPECT_EQ(value, 9);
  EXPECT_EQ(*SettingInteger("Style000ShadowDirection"), 5);
  EXPECT_EQ(Line(120), "SDWDIR120=5");
  DialogPickerReadBack(picker);
  EXPECT_TRUE(DialogPickerValue(picker, &value));
  EXPECT_EQ(value, 5);
  EXPECT_EQ(DialogReadLine(picker, "SCRL4D120=1"), 0);
}

TEST_F(ValueControls, PickerSetUpFailsCleanly) {
  WindowHandle picker = Item(118);
  int32_t saved = 2;
  PickerDestroy(picker);
  EXPECT_TRUE(SweepAllocationFailures([&] {
    DialogPickerSetUp(picker, 3, &saved);
    int32_t value = 0;
    const int ok = DialogPickerValue(picker, &value) && value == 3;
    PickerDestroy(picker);
    return ok;
  }));
  DialogPickerClick(picker, 30, 5);  // without a block a click changes nothing
  EXPECT_EQ(saved, 2);
  EXPECT_FALSE(DialogPickerValue(picker, nullptr));
}
