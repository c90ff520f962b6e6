// Options onto controls, and documents written through a temporary file.
#include "cli/dialog_state.h"

#include <cerrno>
#include <climits>
#include <cstdlib>

#include "controls/page_setup.h"
#include "controls/page_tables.h"
#include "controls/value_controls.h"
#include "documents/effect_document.h"
#include "documents/settings.h"
#include "materials/material_button.h"
#include "host/writers/output_file.h"
#include "shell/main_dialog_ids.h"

namespace {

struct SwitchControl {
  int32_t CommandLine::*field;
  int32_t id;
};

const SwitchControl kSwitchControls[] = {
    {&CommandLine::bold, kIdBold},
    {&CommandLine::italic, kIdItalic},
    {&CommandLine::trueColour, kIdTrueColour},
    {&CommandLine::customPalette, kIdCustomPalette},
    {&CommandLine::dither, kIdDither},
    {&CommandLine::transparent, kIdTransparent},
    {&CommandLine::supercompress, kIdSupercompress},
    {&CommandLine::alpha, kIdAlphaTransparency},
};

int ParseWhole(const std::string& text, long long* value) {
  if (text.empty()) return 0;
  errno = 0;
  char* end = nullptr;
  *value = strtoll(text.c_str(), &end, 10);
  return !errno && !*end && *value >= INT32_MIN && *value <= UINT32_MAX;
}

std::string* capturedMessage = nullptr;

void CaptureMessage(WindowHandle, const char* text) {
  if (capturedMessage) *capturedMessage = text ? text : "";
}

// Calls `visit` for every material button of the main dialog's table and of the pages.
template <typename Visit>
void ForEachMaterialButton(Visit visit) {
  auto table = [&](const PageTable& t) {
    for (int32_t i = 0; i < t.count; ++i)
      if (t.controls[i].kind == kControlMaterialButton) visit(t.controls[i]);
  };
  table(kMainDialogTable);
  for (const PageTable& page : kPageTables) table(page);
}

// Each material button gets a block made from its colour setting, or its table colour when it has
// none. A button shared by several pages gets one block.
int GiveButtonMaterials(WindowHandle dialog) {
  int ok = 1;
  ForEachMaterialButton([&](const PageControl& c) {
    WindowHandle button = DialogItem(dialog, c.id);
    if (!ok || !button || ButtonMaterialHandle(button)) return;
    const int32_t* setting = c.key ? SettingInteger(c.key) : nullptr;
    MovableHandle material =
        CreateButtonMaterial(setting ? static_cast<uint32_t>(*setting) : c.colour);
    if (material)
      DialogSetUserData(button, material);
    else
      ok = 0;
  });
  return ok;
}

}  // namespace

void DestroyRunDialog(WindowHandle dialog) {
  if (!dialog) return;
  ForEachMaterialButton([&](const PageControl& c) {
    WindowHandle button = DialogItem(dialog, c.id);
    if (!button) return;
    FreeButtonMaterial(ButtonMaterialHandle(button));
    DialogSetUserData(button, nullptr);
  });
  DialogDestroy(dialog);
}

int ApplyControlText(WindowHandle dialog, int32_t id, const std::string& value,
                     std::string* error) {
  WindowHandle control = DialogItem(dialog, id);
  const ControlKind kind = control ? DialogControlKind(control) : kControlOther;
  const char* tag = ControlTag(kind);
  const std::string bad = "bad value for control " + std::to_string(id) + ": " + value;
  if (!tag) {
    *error = "unknown control: " + std::to_string(id);
    return 0;
  }
  long long number = 0;
  switch (kind) {
    case kControlTextField:
    case kControlFontBox:
      break;
    case kControlCheckBox:
      if (!ParseWhole(value, &number) || (number != 0 && number != 1)) return *error = bad, 0;
      break;
    case kControlComboList:
    case kControlListBoxList:
      if (!ParseWhole(value, &number) || number < 0 || number >= DialogRowCount(control))
        return *error = bad, 0;
      break;
    default:
      if (!ParseWhole(value, &number)) return *error = bad, 0;
  }
  // Without a window system the font box has no list of faces to choose from: the name goes in
  // as it is, and the text layer falls back to its default face if it finds no such face.
  if (kind == kControlFontBox && DialogRowCount(control) == 0) {
    DialogSetText(control, value.c_str());
    StoreControlValue(control);
    return 1;
  }
  const std::string line = tag + std::to_string(id) + "=" + value;
  if (!TakeControlLine(control, line.c_str())) return *error = bad, 0;
  // A font box with a list keeps its old text when the name is not among its rows.
  if (kind == kControlFontBox) {
    char text[kDocumentTextLimit + 1];
    DialogGetText(control, text, sizeof text);
    if (value != text) return *error = "unknown font: " + value, 0;
  }
  return 1;
}

WindowHandle CreateRunDialog(const CommandLine& line, const std::string& document,
                             std::string* error) {
  WindowHandle dialog = CreateValueDialog();
  if (dialog && !GiveButtonMaterials(dialog)) dialog = (DestroyRunDialog(dialog), nullptr);
  if (!dialog) {
    *error = "out of memory";
    return nullptr;
  }
  int ok = 1;
  if (!document.empty()) {
    // A document that cannot be read changes nothing and says why through the shower.
    std::string message;
    capturedMessage = &message;
    SetDocumentMessageShower(CaptureMessage);
    LoadDocument(dialog, document.c_str());
    SetDocumentMessageShower(nullptr);
    capturedMessage = nullptr;
    if (!message.empty()) {
      *error = "cannot read " + document + ": " + message;
      ok = 0;
    }
  }
  if (ok && !line.effect.empty()) {
    int32_t row = FindEffectRow(line.effect);
    if (row < 0) {
      *error = "unknown effect: " + line.effect + " (see gm5 effects)";
      ok = 0;
    } else {
      ok = ApplyControlText(dialog, kIdEffect, std::to_string(row), error);
    }
  }
  if (ok && line.hasText) ok = ApplyControlText(dialog, kTextFieldId, line.text, error);
  if (ok && !line.font.empty()) ok = ApplyControlText(dialog, kIdFontName, line.font, error);
  if (ok && line.size) ok = ApplyControlText(dialog, kIdFontSize, std::to_string(line.size), error);
  for (const SwitchControl& s : kSwitchControls)
    if (ok && line.*s.field != -1)
      ok = ApplyControlText(dialog, s.id, std::to_string(line.*s.field), error);
  for (const auto& control : line.controls)
    if (ok) ok = ApplyControlText(dialog, control.first, control.second, error);
  if (!ok) {
    DestroyRunDialog(dialog);
    return nullptr;
  }
  return dialog;
}

int SaveRunDocument(WindowHandle dialog, const std::string& path, std::string* error) {
  OutputTarget target;
  if (!BeginOutput(&target, path, 0, error)) return 0;
  std::string message;
  capturedMessage = &message;
  SetDocumentMessageShower(CaptureMessage);
  int ok = SaveDocument(dialog, target.temporary.c_str());
  SetDocumentMessageShower(nullptr);
  capturedMessage = nullptr;
  // The save keeps a backup of what it replaces; the temporary had none worth keeping.
  std::string backup = target.temporary + ".bak";
  remove(backup.c_str());
  if (!ok) {
    *error = "cannot write " + path + (message.empty() ? std::string() : ": " + message);
    AbandonOutput(&target);
    return 0;
  }
  return CommitOutput(&target, error);
}
