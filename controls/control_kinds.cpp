// The table of control kinds. One row per kind: a new kind is a row here and its own files.
#include "controls/control_kinds.h"

#include "controls/animation_picker.h"
#include "controls/direction_picker.h"
#include "controls/value_controls.h"
#include "materials/fountain_button.h"
#include "materials/material_button.h"

namespace {

constexpr ControlKindProcs Value(ControlKind kind, const char* tag) {
  return {kind,    tag,     nullptr,        nullptr,         nullptr, nullptr, nullptr,
          TakeValueLine, FormatValueLine, nullptr, nullptr, nullptr, nullptr};
}

constexpr ControlKindProcs Picker(ControlKind kind, const char* tag) {
  return {kind,          tag,          nullptr,          PickerSetUp, PickerReadBack,
          PickerPress,   PickerValue,  PickerTakeLine,   PickerFormatLine,
          PickerDestroy, nullptr,      nullptr,          nullptr};
}

// Kinds whose subsystems are still to come keep their word, so their lines are recognised.
constexpr ControlKindProcs Word(ControlKind kind, const char* tag) {
  return {kind,    tag,     nullptr, nullptr, nullptr, nullptr, nullptr,
          nullptr, nullptr, nullptr, nullptr, nullptr, nullptr};
}

const ControlKindProcs kRows[] = {
    Word(kControlLabel, nullptr),
    Value(kControlColourButton, "CLRBTN"),
    Value(kControlSpinEdit, "SPNBTN"),
    Value(kControlSignedSpinEdit, "SPNSGN"),
    Word(kControlUpDown, nullptr),
    Value(kControlCheckBox, "CHKBOX"),
    Value(kControlTextField, "TXTFLD"),
    Value(kControlComboList, "CMBBOX"),
    Value(kControlListBoxList, "CMBBOX"),
    Value(kControlFontBox, "FNTBOX"),
    Picker(kControlShadowPicker, "SDWDIR"),
    Picker(kControlScroll4Picker, "SCRL4D"),
    Picker(kControlScroll2Picker, "SCRL2D"),
    Picker(kControlScrollHVPicker, "SCRLHV"),
    // The button's lines are its window's on Windows, which sets these aside.
    {kControlMaterialButton, "MATLBT", CreateMaterialForButton, nullptr, nullptr, nullptr,
     nullptr, MaterialButtonTakeLine, MaterialButtonFormatLine, FreeMaterialOfButton, nullptr,
     nullptr, nullptr},
    {kControlFountainButton, "FOUNTB", CreateFountainForButton, nullptr, nullptr, nullptr,
     nullptr, FountainButtonTakeLine, FountainButtonFormatLine, FreeFountainOfButton, nullptr,
     nullptr, nullptr},
    {kControlAnimationPicker, "ANMCTL", nullptr, nullptr, nullptr, nullptr, nullptr,
     AnimationPickerTakeLine, AnimationPickerFormatLine, AnimationPickerDestroy, nullptr, nullptr,
     nullptr},
};

constexpr int32_t kRowCount = static_cast<int32_t>(sizeof kRows / sizeof kRows[0]);

struct MadeRows {
  ControlKindProcs rows[kRowCount];
  MadeRows() {
    for (int32_t i = 0; i < kRowCount; ++i) {
      rows[i] = kRows[i];
      AddKindWindowParts(&rows[i]);
    }
  }
};

}  // namespace

const ControlKindProcs* ControlKindRows(int32_t* count) {
  static const MadeRows made;
  if (count) *count = kRowCount;
  return made.rows;
}
