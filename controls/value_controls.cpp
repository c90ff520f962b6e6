// The value controls' behaviour on the dialog port: reading, clamping, storing into the setting,
// document lines, and the dialog's handling of a control's command.
#include "controls/value_controls.h"

#include <cctype>
#include <cstdio>
#include <cstring>
#include <string>

#include "documents/settings.h"
#include "shell/host_interface.h"

namespace {

// The host's colour dialog, offered the swatch cube; the owner is the button's dialog.
int ChooseColourFromHost(WindowHandle owner, uint32_t* colour, const uint8_t* swatches) {
  ColourRequest request = {};
  request.size = sizeof request;
  request.version = kInterfaceVersion;
  request.palette = const_cast<uint8_t*>(swatches);
  request.bits = 24;
  request.colour = *colour;
  request.owner = owner;
  if (!CallHost(nullptr, HostOpChooseColour, 0, reinterpret_cast<uint64_t>(&request))) return 0;
  *colour = request.colour;
  return 1;
}

ColourChooser g_chooser = ChooseColourFromHost;

// A control's whole window text.
std::string TextOf(WindowHandle control) {
  char small[kSettingTextSize];
  const int length = DialogGetText(control, small, sizeof small);
  if (length < static_cast<int>(sizeof small) - 1)
    return std::string(small, length > 0 ? length : 0);
  std::string text(kDocumentLineLimit, '\0');
  const int full = DialogGetText(control, text.data(), static_cast<int>(text.size()));
  text.resize(full > 0 ? static_cast<size_t>(full) : 0);
  return text;
}

void CopySettingText(const std::string& text, void* setting) {
  char* buffer = static_cast<char*>(setting);
  std::memset(buffer, 0, kSettingTextSize);
  std::memcpy(buffer, text.data(),
              text.size() < kSettingTextSize ? text.size() : kSettingTextSize - 1);
}

// Pickers hold their value in a block of their own and are set up rather than set.
int IsPicker(ControlKind kind) {
  const ControlKindProcs* row = DialogKindProcs(kind);
  return row && row->setUp;
}

// Build is enabled exactly when the text field holds something.
void UpdateBuildButton(WindowHandle dialog) {
  char first[2] = "";
  DialogGetText(DialogItem(dialog, kTextFieldId), first, sizeof first);
  DialogEnableItem(DialogItem(dialog, kBuildButtonId), first[0] != 0);
}

void StartUpdateTimer(WindowHandle dialog, int32_t id) {
  if (id < kFirstTimedId) return;
  const int32_t* delay = SettingInteger("UpdateDelay");
  DialogSetTimer(dialog, kUpdateTimerId, delay ? static_cast<uint32_t>(*delay) : 250u);
}

}  // namespace

const char* ControlTag(ControlKind kind) {
  const ControlKindProcs* row = DialogKindProcs(kind);
  return row ? row->tag : nullptr;
}

SpinRange ParseSpinRange(const char* text) {
  SpinRange range = {0, 100, 0};
  if (text) std::sscanf(text, "%d,%d,%d", &range.min, &range.max, &range.initial);
  return range;
}

int32_t ReadDlgValue(WindowHandle dialog, int32_t id) {
  char rangeText[kSettingTextSize] = "";
  DialogGetText(DialogItem(dialog, id + kUpDownIdOffset), rangeText, sizeof rangeText);
  const SpinRange range = ParseSpinRange(rangeText);
  int translated = 0;
  const int32_t raw =
      static_cast<int32_t>(GetDialogItemInt(dialog, id, &translated, range.min < 0));
  const int32_t atLeastMin = raw > range.min ? raw : range.min;
  if (range.max < atLeastMin) return range.max;
  if (raw < range.min) return range.min;
  return raw;
}

void StoreControlValue(WindowHandle control) {
  void* setting = DialogGetUserData(control);
  const ControlKind kind = DialogControlKind(control);
  if (!setting || IsPicker(kind)) return;
  WindowHandle dialog = DialogParent(control);
  const int32_t id = DialogItemId(control);
  int translated = 0;
  switch (kind) {
    case kControlColourButton:
      *static_cast<uint32_t*>(setting) = GetDialogItemInt(dialog, id, &translated, 0);
      break;
    case kControlSpinEdit:
      *static_cast<int32_t*>(setting) = ReadDlgValue(dialog, id);
      break;
    case kControlSignedSpinEdit:
      std::snprintf(static_cast<char*>(setting), kSettingTextSize, "%d", ReadDlgValue(dialog, id));
      break;
    case kControlCheckBox:
      *static_cast<int32_t*>(setting) = DialogGetCheck(control) ? 1 : 0;
      break;
    case kControlTextField:
    case kControlFontBox:
      CopySettingText(TextOf(control), setting);
      break;
    case kControlComboList:
    case kControlListBoxList:
      *static_cast<int32_t*>(setting) = DialogGetSelection(control);
      break;
    default:
      break;
  }
}

void BindControl(WindowHandle control, void* setting) {
  if (!control || !setting) return;
  const ControlKind kind = DialogControlKind(control);
  WindowHandle dialog = DialogParent(control);
  const int32_t id = DialogItemId(control);
  if (IsPicker(kind)) {
    int32_t* saved = static_cast<int32_t*>(setting);
    SetDialogItemInt(dialog, id, static_cast<uint32_t>(*saved), 0);
    DialogKindProcs(kind)->setUp(control, *saved, saved);
    return;
  }
  switch (kind) {
    case kControlColourButton:
      SetDialogItemInt(dialog, id, *static_cast<uint32_t*>(setting), 0);
      break;
    case kControlSpinEdit:
      SetDialogItemInt(dialog, id, static_cast<uint32_t>(*static_cast<int32_t*>(setting)), 1);
      break;
    case kControlSignedSpinEdit:
    case kControlTextField:
      DialogSetText(control, static_cast<const char*>(setting));
      break;
    case kControlFontBox:
      DialogSelectString(control, static_cast<const char*>(setting));
      break;
    case kControlCheckBox:
      DialogSetCheck(control, *static_cast<int32_t*>(setting) != 0);
      break;
    case kControlComboList:
    case kControlListBoxList:
      DialogSetSelection(control, *static_cast<int32_t*>(setting));
      break;
    default:
      return;
  }
  DialogSetUserData(control, setting);
}

size_t FormatControlLine(WindowHandle control, char* line, size_t size) {
  if (!line || size == 0) return 0;
  line[0] = 0;
  const ControlKindProcs* row = DialogKindProcs(DialogControlKind(control));
  return row && row->formatLine ? row->formatLine(control, line, size) : 0;
}

int TakeControlLine(WindowHandle control, const char* line) {
  const ControlKindProcs* row = DialogKindProcs(DialogControlKind(control));
  return row && row->takeLine ? row->takeLine(control, line) : 0;
}

size_t FormatValueLine(WindowHandle control, char* line, size_t size) {
  if (!line || size == 0) return 0;
  line[0] = 0;
  const ControlKind kind = DialogControlKind(control);
  const char* tag = ControlTag(kind);
  WindowHandle dialog = DialogParent(control);
  const int32_t id = DialogItemId(control);
  int translated = 0;
  int n = 0;
  switch (kind) {
    case kControlColourButton:
      n = std::snprintf(line, size, "%s%d=%u", tag, id,
                        GetDialogItemInt(dialog, id, &translated, 0));
      break;
    case kControlSpinEdit:
    case kControlSignedSpinEdit:
      n = std::snprintf(line, size, "%s%d=%d", tag, id, ReadDlgValue(dialog, id));
      break;
    case kControlCheckBox:
      n = std::snprintf(line, size, "%s%d=%d", tag, id, DialogGetCheck(control) ? 1 : 0);
      break;
    case kControlComboList:
    case kControlListBoxList:
      n = std::snprintf(line, size, "%s%d=%d", tag, id, DialogGetSelection(control));
      break;
    case kControlTextField:
    case kControlFontBox: {
      std::string text = TextOf(control);
      if (text.size() > kDocumentTextLimit) text.resize(kDocumentTextLimit);
      n = std::snprintf(line, size, "%s%d=%s", tag, id, text.c_str());
      break;
    }
    default:
      return 0;
  }
  if (n < 0) {
    line[0] = 0;
    return 0;
  }
  return static_cast<size_t>(n) < size ? static_cast<size_t>(n) : size - 1;
}

int TakeValueLine(WindowHandle control, const char* line) {
  const ControlKind kind = DialogControlKind(control);
  const char* tag = ControlTag(kind);
  if (!tag || !TagMatches(line, tag)) return 0;
  const char* value = std::strchr(line, '=');
  if (!value) return 0;
  while (*value == '=' || *value == ' ' || *value == '\t') ++value;
  WindowHandle dialog = DialogParent(control);
  const int32_t id = DialogItemId(control);
  switch (kind) {
    case kControlColourButton:
      SetDialogItemInt(dialog, id, static_cast<uint32_t>(ParseAtoi(value)), 0);
      break;
    case kControlSpinEdit:
    case kControlSignedSpinEdit:
      SetDialogItemInt(dialog, id, static_cast<uint32_t>(ParseAtoi(value)), 1);
      break;
    case kControlCheckBox:
      DialogSetCheck(control, ParseAtoi(value));
      break;
    case kControlTextField:
      DialogSetText(control, value);
      break;
    case kControlComboList:
    case kControlListBoxList:
      DialogSetSelection(control, ParseAtoi(value));
      break;
    case kControlFontBox:
      DialogSelectString(control, value);
      break;
    default:
      // Kinds whose lines belong to other subsystems take nothing until those exist.
      return 0;
  }
  StoreControlValue(control);
  return 1;
}

void HandleValueCommand(WindowHandle dialog, int32_t id, int32_t notification) {
  if (!DialogItemVisible(dialog)) return;
  WindowHandle control = DialogItem(dialog, id);
  if (!control) return;
  switch (DialogControlKind(control)) {
    case kControlTextField:
      StoreControlValue(control);
      UpdateBuildButton(dialog);
      break;
    case kControlSpinEdit:
    case kControlSignedSpinEdit:
    case kControlCheckBox:
    case kControlListBoxList:
      StoreControlValue(control);
      break;
    case kControlUpDown: {
      // The number is read with the updown's own id, whose partner range doesn't exist.
      WindowHandle edit = DialogItem(dialog, id - kUpDownIdOffset);
      if (int32_t* setting = static_cast<int32_t*>(DialogGetUserData(edit)))
        *setting = ReadDlgValue(dialog, id);
      break;
    }
    case kControlComboList:
      if (notification == kComboSelectionChanged) StoreControlValue(control);
      UpdateBuildButton(dialog);
      if (notification != kComboSelectionChanged) return;
      break;
    case kControlFontBox:
      if (notification != kComboSelectionChanged) return;
      StoreControlValue(control);
      break;
    case kControlColourButton: {
      int translated = 0;
      uint32_t colour = GetDialogItemInt(dialog, id, &translated, 0);
      if (uint32_t* setting = static_cast<uint32_t*>(DialogGetUserData(control))) colour = *setting;
      if (!ChooseColour(dialog, &colour)) return;
      if (uint32_t* setting = static_cast<uint32_t*>(DialogGetUserData(control))) *setting = colour;
      SetDialogItemInt(dialog, id, colour, 0);
      break;
    }
    case kControlShadowPicker:
    case kControlScroll4Picker:
    case kControlScroll2Picker:
    case kControlScrollHVPicker:
    // The animation picker tells its dialog after a choice, taken or cancelled: the sample is
    // redrawn from the animation it holds now.
    case kControlAnimationPicker:
    case kControlFountainButton:  // holds its gradient itself: a change only repaints the sample
      break;
    default:
      return;
  }
  StartUpdateTimer(dialog, id);
}

void SetColourChooser(ColourChooser chooser) {
  g_chooser = chooser ? chooser : ChooseColourFromHost;
}

int ChooseColour(WindowHandle owner, uint32_t* colour) {
  uint8_t swatches[768] = {};
  BuildSwatchTable(swatches);
  return g_chooser(owner, colour, swatches);
}
