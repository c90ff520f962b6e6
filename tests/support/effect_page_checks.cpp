// Effect page checks through the dialog port: kinds, hidden state, values and page switching.
#include "tests/support/effect_page_checks.h"

#include <string>

#include "controls/page_tables.h"
#include "controls/value_controls.h"
#include "documents/settings.h"
#include "materials/material_button.h"
#include "shell/effect_table.h"

namespace {

int RowCount(const char* rows) {
  if (!rows || !*rows) return 0;
  int n = 1;
  for (const char* p = rows; *p; ++p) n += *p == ';';
  return n;
}

std::string Text(WindowHandle control) {
  char text[300];
  DialogGetText(control, text, sizeof text);
  return text;
}

// The value a control should hold: its setting's, or the table's initial one.
int32_t Expected(const PageControl& c) {
  const int32_t* setting = c.key ? SettingInteger(c.key) : nullptr;
  if (setting) return *setting;
  if (c.kind == kControlSpinEdit) return ParseSpinRange(c.range).initial;
  if (c.kind == kControlColourButton) return static_cast<int32_t>(c.colour);
  return c.keyDefault;
}

testing::AssertionResult CheckControl(WindowHandle dialog, const PageControl& c) {
  WindowHandle control = DialogItem(dialog, c.id);
  const std::string where = " of control " + std::to_string(c.id);
  if (!control) return testing::AssertionFailure() << "missing" << where;
  if (DialogControlKind(control) != c.kind)
    return testing::AssertionFailure() << "kind " << DialogControlKind(control) << where;
  if (DialogItemVisible(control)) return testing::AssertionFailure() << "visible" << where;
  if (HasLabel(c) && DialogControlKind(DialogItem(dialog, c.id + 1)) != kControlLabel)
    return testing::AssertionFailure() << "no label" << where;
  if (HasUpDown(c) &&
      (DialogControlKind(DialogItem(dialog, c.id + kUpDownIdOffset)) != kControlUpDown ||
       Text(DialogItem(dialog, c.id + kUpDownIdOffset)) != c.range))
    return testing::AssertionFailure() << "no updown with the range" << where;
  const int32_t expected = Expected(c);
  int32_t value = -1;
  switch (c.kind) {
    case kControlSpinEdit: {
      int translated = 0;  // as set, before any clamping to the range
      value = static_cast<int32_t>(GetDialogItemInt(dialog, c.id, &translated, 1));
      break;
    }
    case kControlColourButton:
      value = static_cast<int32_t>(std::stoul(Text(control)));
      break;
    case kControlCheckBox:
      value = DialogGetCheck(control);
      break;
    case kControlComboList:
      if (DialogRowCount(control) != RowCount(c.range))
        return testing::AssertionFailure() << DialogRowCount(control) << " rows" << where;
      value = DialogGetSelection(control);
      break;
    case kControlShadowPicker:
    case kControlScroll4Picker:
    case kControlScroll2Picker:
    case kControlScrollHVPicker:
      DialogPickerValue(control, &value);
      break;
    case kControlMaterialButton: {
      const Material* m = MaterialForButton(control);
      if (!m) return testing::AssertionFailure() << "no material" << where;
      value = static_cast<int32_t>(m->solidColour);
      MovableUnlock(ButtonMaterialHandle(control));
      if (value != static_cast<int32_t>(c.colour))
        return testing::AssertionFailure() << "material colour " << value << where;
      return testing::AssertionSuccess();
    }
    default:
      return testing::AssertionSuccess();
  }
  if (value != expected)
    return testing::AssertionFailure() << "value " << value << " for " << expected << where;
  return testing::AssertionSuccess();
}

struct VisibleCheck {
  int32_t row;
  int32_t wrong;  // the first page control in the wrong state, 0 when none
};

int CheckVisible(WindowHandle child, void* param) {
  VisibleCheck* check = static_cast<VisibleCheck*>(param);
  const int32_t id = DialogItemId(child);
  if (!IsPageControlId(id)) return 1;
  if (DialogItemVisible(child) != ListHasControl(EffectTable[check->row].controls, id)) {
    check->wrong = id;
    return 0;
  }
  return 1;
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
    for (int32_t i = 0; i < page.count; ++i) {
      testing::AssertionResult result = CheckControl(dialog, page.controls[i]);
      if (!result) return result << " (page " << page.style << ")";
    }
  return testing::AssertionSuccess();
}

testing::AssertionResult EachRowShowsOnlyItsPage(WindowHandle dialog) {
  for (int32_t row = 0; row < kEffectCount; ++row) {
    ShowEffectPage(dialog, row);
    VisibleCheck check = {row, 0};
    DialogEnumChildren(dialog, CheckVisible, &check);
    if (check.wrong)
      return testing::AssertionFailure() << "row " << row << ": control " << check.wrong;
  }
  return testing::AssertionSuccess();
}
