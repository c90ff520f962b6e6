// Building a dialog's controls from the page tables and binding them to the settings table.
#include "controls/page_setup.h"

#include <cstring>
#include <string>

#include "controls/animation_picker.h"
#include "controls/control_kinds.h"
#include "controls/direction_picker.h"
#include "controls/value_controls.h"
#include "documents/settings.h"
#include "shell/effect_table.h"

namespace {

void AddRows(WindowHandle control, const char* rows) {
  if (!rows) return;
  const char* p = rows;
  while (*p) {
    const char* end = std::strchr(p, ';');
    if (!end) end = p + std::strlen(p);
    DialogAddRow(control, std::string(p, static_cast<size_t>(end - p)).c_str());
    p = *end ? end + 1 : end;
  }
}

int IsListKind(ControlKind kind) {
  return kind == kControlComboList || kind == kControlListBoxList || kind == kControlFontBox;
}

// Controls of window classes that come with other parts of the plug-in: a page made while one of
// them is not registered leaves that control out.
int MayBeMissing(ControlKind kind) {
  return kind == kControlMaterialButton || kind == kControlFountainButton ||
         kind == kControlAnimationPicker;
}

constexpr int32_t kPageResourceBase = 7400;

void HideItem(WindowHandle dialog, int32_t id) {
  DialogShowItem(DialogItem(dialog, id), 0);
}

}  // namespace

void InstallControlKinds() {
  // Classes may have been removed since (a library unregisters them before it is unloaded).
  RegisterKindWindowClasses();
  static DialogBehaviour behaviour = {};
  if (!behaviour.kinds) {
    behaviour.kinds = ControlKindRows(&behaviour.kindCount);
    behaviour.command = HandleValueCommand;
    behaviour.makePage = MakeTablePage;
  }
  DialogInstallBehaviour(&behaviour);
}

int MakeTablePage(WindowHandle dialog, int32_t resourceId) {
  const int32_t style = resourceId - kPageResourceBase;
  if (!dialog || style < 0 || style >= static_cast<int32_t>(kPageTables.size())) return 0;
  const PageTable& page = kPageTables[style];
  if (!AddTableControls(dialog, page, 1)) return 0;
  for (int32_t i = 0; i < page.count; ++i) {
    const PageControl& c = page.controls[i];
    HideItem(dialog, c.id);
    if (HasLabel(c)) HideItem(dialog, c.id + 1);
    if (HasUpDown(c)) HideItem(dialog, c.id + kUpDownIdOffset);
  }
  return 1;
}

int AddTableControls(WindowHandle dialog, const PageTable& table, int withLabels) {
  InstallControlKinds();
  for (int32_t i = 0; i < table.count; ++i) {
    const PageControl& c = table.controls[i];
    const char* ownText =
        c.kind == kControlCheckBox || c.kind == kControlLabel || c.kind == kControlOther ? c.caption
                                                                                         : "";
    WindowHandle control = DialogAddControl(dialog, c.id, c.kind, ownText);
    if (!control) return 0;
    if (IsListKind(c.kind)) AddRows(control, c.range);
    if (withLabels && HasLabel(c) && !DialogAddControl(dialog, c.id + 1, kControlLabel, c.caption))
      return 0;
    if (HasUpDown(c) && !DialogAddControl(dialog, c.id + kUpDownIdOffset, kControlUpDown, c.range))
      return 0;
  }
  return 1;
}

int AddAllDialogControls(WindowHandle dialog) {
  if (!AddTableControls(dialog, kMainDialogTable, 0)) return 0;
  for (int32_t row = 0; row < kEffectCount; ++row)
    if (!AddTableControls(dialog, kPageTables[EffectStyle[row]], 1)) return 0;
  return 1;
}

void SetUpTableControls(WindowHandle dialog, const PageTable& table) {
  InstallControlKinds();
  for (int32_t i = 0; i < table.count; ++i) {
    const PageControl& c = table.controls[i];
    WindowHandle control = DialogItem(dialog, c.id);
    if (!control) continue;
    const SettingEntry* setting = FindSetting(c.key);
    const int bindable = setting && c.kind != kControlMaterialButton &&
                         c.kind != kControlFountainButton && c.kind != kControlAnimationPicker;
    if (bindable) {
      BindControl(control, setting->value);
      continue;
    }
    switch (c.kind) {
      case kControlSpinEdit:
      case kControlSignedSpinEdit:
        SetDialogItemInt(dialog, c.id, static_cast<uint32_t>(ParseSpinRange(c.range).initial), 1);
        break;
      case kControlColourButton:
        SetDialogItemInt(dialog, c.id, c.colour, 0);
        break;
      case kControlCheckBox:
        DialogSetCheck(control, c.keyDefault);
        break;
      case kControlShadowPicker:
      case kControlScroll4Picker:
      case kControlScroll2Picker:
      case kControlScrollHVPicker:
        SetDialogItemInt(dialog, c.id, static_cast<uint32_t>(c.keyDefault), 0);
        PickerSetUp(control, c.keyDefault, nullptr);
        break;
      case kControlAnimationPicker:
        if (setting && (setting->flags & kSettingString))
          AnimationPickerBind(control, static_cast<char*>(setting->value));
        break;
      default:
        break;
    }
  }
}

int SetUpPageTwins(WindowHandle dialog, const PageTable& table) {
  InstallControlKinds();
  for (int32_t i = 0; i < table.count; ++i) {
    const PageControl& c = table.controls[i];
    WindowHandle control = DialogItem(dialog, c.id);
    if (!control) {
      if (MayBeMissing(c.kind)) continue;
      return 0;
    }
    DialogSetControlKind(control, c.kind);
    if (HasLabel(c)) DialogSetControlKind(DialogItem(dialog, c.id + 1), kControlLabel);
    if (HasUpDown(c))
      DialogSetControlKind(DialogItem(dialog, c.id + kUpDownIdOffset), kControlUpDown);
    if (IsListKind(c.kind)) {
      DialogClearRows(control);
      AddRows(control, c.range);
    }
  }
  SetUpTableControls(dialog, table);
  for (int32_t i = 0; i < table.count; ++i) {
    const PageControl& c = table.controls[i];
    WindowHandle control = DialogItem(dialog, c.id);
    if (!control) continue;
    const int holdsRecord = c.kind == kControlMaterialButton || c.kind == kControlFountainButton;
    if (holdsRecord && !DialogCreateMaterial(control, c.colour)) return 0;
    // A picker whose block could not be made has no value.
    int32_t value = 0;
    if (FindPickerShape(c.kind) && !DialogPickerValue(control, &value)) return 0;
  }
  return 1;
}

void SetUpAllDialogControls(WindowHandle dialog) {
  WindowHandle effectBox = DialogItem(dialog, 58);
  DialogClearRows(effectBox);
  for (int32_t row = 0; row < kEffectCount; ++row) DialogAddRow(effectBox, EffectTable[row].name);
  SetUpTableControls(dialog, kMainDialogTable);
  for (int32_t row = 0; row < kEffectCount; ++row)
    SetUpTableControls(dialog, kPageTables[EffectStyle[row]]);
}

WindowHandle CreateValueDialog() {
  InstallControlKinds();
  WindowHandle dialog = DialogCreate();
  if (!dialog) return nullptr;
  if (!AddAllDialogControls(dialog)) {
    DialogDestroy(dialog);
    return nullptr;
  }
  SetUpAllDialogControls(dialog);
  return dialog;
}
