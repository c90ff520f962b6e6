// Effect page checks through the dialog port: kinds, hidden state, values and page switching.
#include "tests/support/effect_page_checks.h"

#include <string>

#include "controls/page_tables.h"
#include "controls/value_controls.h"
#include "documents/settings.h"
#include "materials/material_button.h"
#include "shell/effect_table.h"

namespace {

// The value a control should hold: its setting's, or the table's initial one. A material button
// is made from its creation colour.
int32_t Expected(const PageControl& c) {
  const int32_t* setting = c.key ? SettingInteger(c.key) : nullptr;
  if (c.kind == kControlMaterialButton) return static_cast<int32_t>(c.colour);
  if (setting) return *setting;
  if (c.kind == kControlColourButton) return static_cast<int32_t>(c.colour);
  return c.kind == kControlSpinEdit ? ParseSpinRange(c.range).initial : c.keyDefault;
}

// The value a control holds, as its kind keeps it; the number of list rows in *rows.
int32_t Held(WindowHandle dialog, WindowHandle control, int32_t id, int* rows) {
  int32_t value = -1;
  int translated = 0;
  *rows = DialogRowCount(control);
  switch (DialogControlKind(control)) {
    case kControlSpinEdit:  // the text as set, before any clamping to the range
    case kControlColourButton:
      return static_cast<int32_t>(GetDialogItemInt(dialog, id, &translated, 1));
    case kControlCheckBox:
      return DialogGetCheck(control);
    case kControlComboList:
      return DialogGetSelection(control);
    case kControlMaterialButton:
      if (const Material* m = MaterialForButton(control)) {
        value = static_cast<int32_t>(m->solidColour);
        MovableUnlock(ButtonMaterialHandle(control));
      }
      return value;
    default:
      DialogPickerValue(control, &value);
      return value;
  }
}

testing::AssertionResult CheckControl(WindowHandle dialog, const PageControl& c) {
  WindowHandle control = DialogItem(dialog, c.id);
  WindowHandle updown = DialogItem(dialog, c.id + kUpDownIdOffset);
  char range[64] = "";
  DialogGetText(updown, range, sizeof range);
  int rows = 0;
  const int32_t held = control ? Held(dialog, control, c.id, &rows) : -1;
  int wantedRows = c.kind == kControlComboList;
  for (const char* p = c.range; wantedRows && *p; ++p) wantedRows += *p == ';';
  if (!control || DialogControlKind(control) != c.kind || DialogItemVisible(control) ||
      (HasLabel(c) && DialogControlKind(DialogItem(dialog, c.id + 1)) != kControlLabel) ||
      (HasUpDown(c) &&
       (DialogControlKind(updown) != kControlUpDown || c.range != std::string(range))) ||
      rows != wantedRows)
    return testing::AssertionFailure() << "control " << c.id << " is missing, visible, of another "
                                       << "kind, or without its label, updown or rows";
  const int valued = c.kind != kControlFountainButton && c.kind != kControlAnimationPicker &&
                     c.kind != kControlLabel;
  if (valued && held != Expected(c))
    return testing::AssertionFailure()
           << "control " << c.id << " holds " << held << " for " << Expected(c);
  return testing::AssertionSuccess();
}

}  // namespace

void MovePageSettingsFromDefaults() {
  ResetSettings();
  *SettingInteger("Style000Frames") = 77;               // spin edit
  *SettingInteger("Style000Track") = 0;                 // check
  *SettingInteger("Style015Mode") = 5;                  // combo box
  *SettingInteger("Style009Scroll") = 0;                // picker
  *SettingInteger("Style012BackFillColor") = 0x123456;  // colour button
}

testing::AssertionResult PageTwinsMatchTables(WindowHandle dialog) {
  for (const PageTable& page : kPageTables)
    for (int32_t i = 0; i < page.count; ++i)
      if (testing::AssertionResult result = CheckControl(dialog, page.controls[i]); !result)
        return result << " (page " << page.style << ")";
  return testing::AssertionSuccess();
}

testing::AssertionResult EachRowShowsOnlyItsPage(WindowHandle dialog) {
  for (int32_t row = 0; row < kEffectCount; ++row) {
    ShowEffectPage(dialog, row);
    // The first page control whose state is wrong, or 0.
    int32_t wrong[2] = {row, 0};
    DialogEnumChildren(
        dialog,
        [](WindowHandle child, void* param) {
          int32_t* state = static_cast<int32_t*>(param);
          const int32_t id = DialogItemId(child);
          if (IsPageControlId(id) &&
              DialogItemVisible(child) != ListHasControl(EffectTable[state[0]].controls, id))
            state[1] = id;
          return state[1] == 0 ? 1 : 0;
        },
        wrong);
    if (wrong[1]) return testing::AssertionFailure() << "row " << row << ": control " << wrong[1];
  }
  return testing::AssertionSuccess();
}
