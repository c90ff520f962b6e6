#include "controls/value_controls.h"

#include <cstdio>
#include <string>

#include <gtest/gtest.h>

#include "controls/direction_picker.h"
#include "controls/page_setup.h"
#include "documents/settings.h"
#include "host/host_session.h"
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
    ResetSettings();
  }
  WindowHandle Item(int32_t id) { return DialogItem(dialog_, id); }
  void SetText(int32_t id, const char* text) { DialogSetText(Item(id), text); }
  std::string Line(int32_t id) {
    char line[2048];
    FormatControlLine(Item(id), line, sizeof line);
    return line;
  }
  uint32_t Timer() { return DialogTimerPeriod(dialog_, kUpdateTimerId); }
  WindowHandle dialog_ = nullptr;
};

HostSession* g_session = nullptr;
uint64_t Serve(void* object, int32_t opcode, uint64_t a, uint64_t b) {
  return ServeHostCall(g_session, object, opcode, a, b);
}

}  // namespace

TEST(DlgItemInt, TranslatesAsTheDialogManagerDoes) {
  const struct {
    const char* text;
    int isSigned;
    uint32_t value;
    int ok;
  } cases[] = {
      {"  42abc", 0, 42, 1},   {"-12", 1, static_cast<uint32_t>(-12), 1}, {"-12", 0, 0, 0},
      {"", 0, 0, 0},           {"4294967295", 0, 4294967295u, 1},         {"4294967296", 0, 0, 0},
      {"2147483648", 1, 0, 0}, {"-2147483648", 1, 0x80000000u, 1},        {"-2147483649", 1, 0, 0}};
  for (const auto& c : cases) {
    int ok = -1;
    EXPECT_EQ(ParseDlgItemInt(c.text, c.isSigned, &ok), c.value) << c.text;
    EXPECT_EQ(ok, c.ok) << c.text;
  }
}

TEST_F(ValueControls, ReadDlgValueClampsToTheUpdownRange) {
  const struct {
    int32_t id;
    const char *range, *text;
    int32_t value;
  } cases[] = {{108, nullptr, "300", 255},                                // Fill opacity, 0..255
               {116, nullptr, "", 1},                                     // Shadow offset, 1..255
               {108, nullptr, "", 0},         {108, "junk", "150", 100},  // no range: 0..100
               {108, "-50,50,0", "-20", -20},  // a negative minimum reads the edit as signed
               {108, "10", "500", 100}};       // a scan that stops early keeps the default max
  for (const auto& c : cases) {
    if (c.range) SetText(10000 + c.id, c.range);
    SetText(c.id, c.text);
    EXPECT_EQ(ReadDlgValue(dialog_, c.id), c.value) << c.text;
  }
  char text[16];
  SetText(108, "300");
  ReadDlgValue(dialog_, 108);
  DialogGetText(Item(108), text, sizeof text);
  EXPECT_STREQ(text, "300") << "reading leaves the text alone";
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
  // An updown's own id has no partner updown: the range is 0..100 and its text reads as 0.
  DialogNotify(dialog_, 10108, 0);
  EXPECT_EQ(*SettingInteger("Style000FillOpacity"), 0);

  // Only changes from id 50 on restart the update timer, with the UpdateDelay period.
  SetText(11, "30");
  DialogKillTimer(dialog_, kUpdateTimerId);
  DialogNotify(dialog_, 11, 0);
  EXPECT_EQ(*SettingInteger("MainDelay"), 30);
  EXPECT_EQ(Timer(), 0u);
  DialogNotify(dialog_, 57, 0);
  EXPECT_EQ(Timer(), 250u);
  *SettingInteger("UpdateDelay") = 90;
  DialogNotify(dialog_, 122, 0);
  EXPECT_EQ(Timer(), 90u);
  // A fountain button's note of an edited gradient repaints the sample too.
  DialogKillTimer(dialog_, kUpdateTimerId);
  DialogNotify(dialog_, 336, 0);
  EXPECT_EQ(Timer(), 90u);
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

// A colour button asks the host, offering the button's colour and the swatch cube, and stores
// only a chosen colour; without a host, or when the host cancels, nothing changes.
TEST_F(ValueControls, ColourButtonsStoreOnlyTheHostsChosenColour) {
  DialogNotify(dialog_, 106, 0);
  EXPECT_EQ(*SettingInteger("Style000OutlineColor"), 3355443);
  HostSession session;
  g_session = &session;
  session.log = std::tmpfile();
  ASSERT_NE(session.log, nullptr);
  ReadHostAnswerLine(&session, "colour 0x808000");
  HostRecord record = {};
  record.version = kInterfaceVersion;
  record.service = Serve;
  CurrentHost = &record;
  DialogNotify(dialog_, 106, 0);
  EXPECT_EQ(*SettingInteger("Style000OutlineColor"), 0x808000);
  EXPECT_EQ(Line(106), "CLRBTN106=8421376");
  EXPECT_EQ(Timer(), 250u);
  DialogKillTimer(dialog_, kUpdateTimerId);
  DialogNotify(dialog_, 106, 0);  // no colour left in the script: a cancel
  EXPECT_EQ(*SettingInteger("Style000OutlineColor"), 0x808000);
  EXPECT_EQ(Timer(), 0u);
  CurrentHost = nullptr;
  char line[256] = "";
  std::rewind(session.log);
  std::fgets(line, sizeof line, session.log);
  std::fclose(session.log);
  EXPECT_STREQ(line,
               "call op=11 name=HostOpChooseColour swatches=cube colour=0x333333 "
               "chosen=0x808000 result=1\n");
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

// Kinds that no table uses yet, and a control of a resource that takes its kind later.
TEST(ValueControlKinds, SignedSpinListBoxHvPickerAndLateKindsKeepTheirValues) {
  InstallControlKinds();
  WindowHandle dialog = DialogCreate();
  ASSERT_NE(dialog, nullptr);
  WindowHandle spin = DialogAddControl(dialog, 700, kControlSignedSpinEdit, "");
  DialogAddControl(dialog, 10700, kControlUpDown, "-90,90,0");
  WindowHandle list = DialogAddControl(dialog, 702, kControlListBoxList, "");
  WindowHandle picker = DialogAddControl(dialog, 704, kControlScrollHVPicker, "");
  WindowHandle field = DialogAddControl(dialog, 52, kControlOther, "Hello");
  for (const char* row : {"one", "two", "three"}) DialogAddRow(list, row);
  char angle[kSettingTextSize] = "-45", line[64];
  int32_t row = 2, way = 1;
  BindControl(spin, angle);
  BindControl(list, &row);
  BindControl(picker, &way);
  const std::pair<WindowHandle, const char*> lines[] = {
      {spin, "SPNSGN700=-45"}, {list, "CMBBOX702=2"}, {picker, "SCRLHV704=1"}};
  for (const auto& [control, text] : lines) {
    FormatControlLine(control, line, sizeof line);
    EXPECT_STREQ(line, text);
  }
  EXPECT_EQ(TakeControlLine(spin, "SPNSGN700=-200"), 1);
  EXPECT_STREQ(angle, "-90");
  EXPECT_EQ(TakeControlLine(list, "CMBBOX702=0"), 1);
  EXPECT_EQ(row, 0);
  DialogPickerClick(picker, 5, 30);
  EXPECT_EQ(way, 0);

  EXPECT_EQ(FormatControlLine(field, line, sizeof line), 0u);
  DialogSetControlKind(field, kControlTextField);
  EXPECT_EQ(DialogWriteLine(field, nullptr), 0);  // no file, no line
  FormatControlLine(field, line, sizeof line);
  EXPECT_STREQ(line, "TXTFLD52=Hello");
  EXPECT_EQ(DialogReadLine(field, "TXTFLD52=Bye"), 1);
  DialogGetText(field, line, sizeof line);
  EXPECT_STREQ(line, "Bye");
  DialogDestroy(dialog);
}

TEST(PickerShapes, CellsFollowTheGrid) {
  const struct {
    ControlKind kind;
    int x, y, cell;
  } cases[] = {{kControlShadowPicker, 24, 24, 0},  {kControlShadowPicker, 25, 25, -1},
               {kControlShadowPicker, 74, 30, 3},  {kControlShadowPicker, 0, 30, 4},
               {kControlScrollHVPicker, 30, 5, 1}, {kControlScrollHVPicker, 5, 30, 0},
               {kControlScrollHVPicker, 5, 5, -1}, {kControlScroll4Picker, 30, 5, 0},
               {kControlScroll4Picker, 30, 70, 3}};
  for (const auto& c : cases)
    EXPECT_EQ(PickerCellAt(FindPickerShape(c.kind), c.x, c.y), c.cell) << c.kind << " " << c.x;
}

TEST_F(ValueControls, PickersSelectOnClickAndTakeLinesWithoutStoring) {
  WindowHandle picker = Item(120);
  int32_t value = -1;
  auto held = [&] { return DialogPickerValue(picker, &value) ? value : -1; };
  DialogPickerClick(picker, 10, 60);
  EXPECT_EQ(held(), 5);
  EXPECT_EQ(*SettingInteger("Style000ShadowDirection"), 5);
  EXPECT_EQ(Timer(), 250u);
  DialogPickerClick(picker, 30, 30);  // the centre: nothing changes
  EXPECT_EQ(held(), 5);
  EXPECT_EQ(DialogReadLine(picker, "sdwdir120=9"), 1);
  EXPECT_EQ(held(), 9);
  EXPECT_EQ(*SettingInteger("Style000ShadowDirection"), 5);
  EXPECT_EQ(Line(120), "SDWDIR120=5");
  DialogPickerReadBack(picker);
  EXPECT_EQ(held(), 5);
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
