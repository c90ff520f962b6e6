// Options onto controls, and documents written through a temporary file.
#include "cli/dialog_state.h"

#include <sys/stat.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <strings.h>
#include <vector>

#include "cli/colour_text.h"
#include "cli/text_encoding.h"
#include "controls/direction_picker.h"
#include "controls/page_setup.h"
#include "controls/page_tables.h"
#include "controls/value_controls.h"
#include "documents/effect_document.h"
#include "documents/settings.h"
#include "materials/material_button.h"
#include "host/writers/output_file.h"
#include "platform/posix/font_list_posix.h"
#include "shell/effect_table.h"
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

constexpr int32_t kIdDelay = 11;
constexpr int32_t kIdPause = 23;

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
// none. A button shared by several pages gets one block. Each fountain button gets its gradient.
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
  // Fountain buttons hold the seven-colour gradient until a document line replaces it; the
  // dialog frees their records when it goes.
  for (const PageTable& page : kPageTables)
    for (int32_t i = 0; i < page.count && ok; ++i)
      if (page.controls[i].kind == kControlFountainButton)
        ok = DialogCreateMaterial(DialogItem(dialog, page.controls[i].id), 0);
  return ok;
}

int IsPickerKind(ControlKind kind) {
  return kind == kControlShadowPicker || kind == kControlScroll4Picker ||
         kind == kControlScroll2Picker || kind == kControlScrollHVPicker;
}

// A picker takes a line into its held value only; its window text and its setting follow here,
// as a click would carry them, so that the build and a saved document see the value.
void SyncPickers(WindowHandle dialog) {
  for (const PageTable& page : kPageTables)
    for (int32_t i = 0; i < page.count; ++i) {
      const PageControl& c = page.controls[i];
      WindowHandle picker = IsPickerKind(c.kind) ? DialogItem(dialog, c.id) : nullptr;
      int32_t value = 0;
      if (!picker || !PickerValue(picker, &value)) continue;
      DialogSetText(picker, std::to_string(value).c_str());
      if (int32_t* setting = c.key ? SettingInteger(c.key) : nullptr) *setting = value;
    }
}

// The spin edits of the main dialog and of the page of effect `row`, with their settings.
template <typename Visit>
void ForEachShownSpin(int32_t row, Visit visit) {
  auto table = [&](const PageTable& t) {
    for (int32_t i = 0; i < t.count; ++i)
      if (t.controls[i].kind == kControlSpinEdit && t.controls[i].key) visit(t.controls[i]);
  };
  table(kMainDialogTable);
  for (const PageTable& page : kPageTables)
    if (row >= 0 && row < kEffectCount && page.style == EffectStyle[row]) table(page);
}

// Reports the settings that their controls took as another value, their range's nearest.
void ReportClampedSettings(WindowHandle dialog, const std::vector<int32_t>& before) {
  const int32_t row = DialogGetSelection(DialogItem(dialog, kIdEffect));
  size_t n = 0;
  ForEachShownSpin(row, [&](const PageControl& c) {
    const int32_t held = ReadDlgValue(dialog, c.id);
    if (n < before.size() && before[n] != held)
      fprintf(stderr, "gm5: the setting %s=%d is outside the range of its control; using %d\n",
              c.key, before[n], held);
    ++n;
  });
}

void AddFontRow(const char* family, void* control) {
  DialogAddRow(static_cast<WindowHandle>(control), family);
}

// Sets a text control to `text` (already in the code page) as it stands, blanks included.
void SetTextAsItIs(WindowHandle control, const std::string& text) {
  DialogSetText(control, text.c_str());
  StoreControlValue(control);
}

// The row of the font box that names `name` in any case, or -1.
int32_t FontRow(WindowHandle box, const std::string& name) {
  char row[kDocumentTextLimit + 1];
  for (int32_t i = 0; i < DialogRowCount(box); ++i) {
    DialogSetSelection(box, i);
    DialogGetText(box, row, sizeof row);
    if (strcasecmp(row, name.c_str()) == 0) return i;
  }
  return -1;
}

// Reads a document whole: a regular file, in UTF-8 (or already in the code page, as the plug-in
// writes it). Text field lines are applied here, blanks kept; the others go to the controls.
int ReadDocument(WindowHandle dialog, const std::string& path, std::string* error) {
  struct stat info;
  if (stat(path.c_str(), &info) != 0)
    return *error = "cannot read " + path + ": " + strerror(errno), 0;
  if (!S_ISREG(info.st_mode)) return *error = "cannot read " + path + ": not a regular file", 0;
  FILE* file = fopen(path.c_str(), "rb");
  if (!file) return *error = "cannot read " + path + ": " + strerror(errno), 0;
  std::string bytes;
  char buffer[65536];
  for (size_t n; (n = fread(buffer, 1, sizeof buffer, file)) > 0;) bytes.append(buffer, n);
  const int failed = ferror(file);
  fclose(file);
  if (failed) return *error = "cannot read " + path + ": read error", 0;
  std::string text = bytes;
  if (IsUtf8(bytes) && !Utf8ToWindows1252(bytes, 0, &text, error))
    return *error = "cannot read " + path + ": " + *error, 0;
  std::string others;
  std::vector<std::pair<WindowHandle, std::string>> texts;
  std::vector<std::pair<int32_t, long long>> spins;  // each spin edit's id and the number read
  size_t start = 0;
  for (int first = 1; start < text.size(); first = 0) {
    size_t end = text.find('\n', start);
    if (end == std::string::npos) end = text.size();
    std::string line = text.substr(start, end - start);
    start = end + 1;
    if (!line.empty() && line.back() == '\r') line.pop_back();
    size_t at = 0;
    while (at < line.size() && static_cast<unsigned char>(line[at]) < 33) ++at;
    const size_t equals = line.find('=', at);
    WindowHandle control = nullptr;
    if (!first && line.size() > at + 6 && strncasecmp(line.c_str() + at, "TXTFLD", 6) == 0 &&
        equals != std::string::npos)
      control = DialogItem(dialog, ParseAtoi(line.c_str() + at + 6));
    if (control && DialogControlKind(control) == kControlTextField) {
      size_t value = equals;
      while (value < line.size() && line[value] == '=') ++value;
      texts.emplace_back(control, line.substr(value));
      continue;
    }
    // A spin edit's line, to report afterwards a number its control took as another.
    for (const ControlKind kind : {kControlSpinEdit, kControlSignedSpinEdit}) {
      const char* tag = ControlTag(kind);
      long long number = 0;
      if (equals != std::string::npos && line.size() > at + 6 &&
          strncasecmp(line.c_str() + at, tag, 6) == 0 &&
          ParseWhole(line.substr(std::min(line.size(), line.find_first_not_of('=', equals))),
                     &number))
        spins.emplace_back(ParseAtoi(line.c_str() + at + 6), number);
    }
    others += line;
    others += '\n';
  }
  FILE* stream = fmemopen(others.data(), others.size() ? others.size() : 1, "r");
  if (!stream) return *error = "out of memory", 0;
  const int marked = others.empty() || LoadDocumentFrom(dialog, stream);
  fclose(stream);
  if (!marked) return *error = "cannot read " + path + ": " + kDocumentDamaged, 0;
  for (const auto& t : texts) SetTextAsItIs(t.first, t.second);
  for (const auto& [id, number] : spins) {
    const ControlKind kind = DialogControlKind(DialogItem(dialog, id));
    if (kind != kControlSpinEdit && kind != kControlSignedSpinEdit) continue;
    const int32_t held = ReadDlgValue(dialog, id);
    if (held != number)
      fprintf(stderr, "gm5: %s: %lld is outside the range of control %d; using %d\n",
              path.c_str(), number, id, held);
  }
  DialogPostMessage(dialog, kMessageAfterLoad);
  return 1;
}

}  // namespace

int32_t FramesControl(int32_t row) {
  if (row < 0 || row >= kEffectCount) return 0;
  for (const PageTable& page : kPageTables) {
    if (page.style != EffectStyle[row]) continue;
    for (int32_t i = 0; i < page.count; ++i) {
      const char* key = page.controls[i].key;
      const size_t n = key ? strlen(key) : 0;
      if (n > 6 && strcmp(key + n - 6, "Frames") == 0) return page.controls[i].id;
    }
  }
  return 0;
}

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
  std::string written = value;
  switch (kind) {
    case kControlTextField: {
      // Typed text is UTF-8, held in the code page; blanks at either end are part of it.
      std::string text;
      if (!Utf8ToWindows1252(value, 1, &text, error)) return 0;
      SetTextAsItIs(control, text);
      return 1;
    }
    case kControlFontBox: {
      // A face that is not installed goes in as it is; the text layer draws its substitute.
      const int32_t row = FontRow(control, value);
      if (row < 0) {
        SetTextAsItIs(control, value);
        return 1;
      }
      DialogSetSelection(control, row);
      StoreControlValue(control);
      return 1;
    }
    case kControlColourButton: {
      uint32_t colour = 0;
      if (!ParseColourText(value, &colour))
        return *error = bad + " (a colour: " + kColourForms + ")", 0;
      written = std::to_string(colour);
      break;
    }
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
  const std::string line = tag + std::to_string(id) + "=" + written;
  if (!TakeControlLine(control, line.c_str())) return *error = bad, 0;
  if (kind == kControlSpinEdit || kind == kControlSignedSpinEdit) {
    const int32_t held = ReadDlgValue(dialog, id);
    if (held != number)
      fprintf(stderr, "gm5: %lld is outside the range of control %d; using %d\n", number, id, held);
  }
  return 1;
}

WindowHandle CreateRunDialog(const CommandLine& line, const std::string& document,
                             std::string* error) {
  // The values the settings hold for the controls shown, to report those their controls clamp.
  std::vector<int32_t> settingValues;
  const int32_t* effect = SettingInteger("MainEffect");
  ForEachShownSpin(effect ? *effect : -1, [&](const PageControl& c) {
    const int32_t* value = SettingInteger(c.key);
    settingValues.push_back(value ? *value : 0);
  });
  WindowHandle dialog = CreateValueDialog();
  if (dialog && !GiveButtonMaterials(dialog)) dialog = (DestroyRunDialog(dialog), nullptr);
  if (!dialog) {
    *error = "out of memory";
    return nullptr;
  }
  // Without a window system the font box is filled here, from the installed families, then set
  // from its setting as it would have been with the list in place.
  if (WindowHandle box = DialogItem(dialog, kIdFontName)) {
    if (DialogRowCount(box) == 0) {
      ListFontFamilies(AddFontRow, box);
      const char* setting = static_cast<const char*>(DialogGetUserData(box));
      if (setting) {
        const std::string name = setting;
        ApplyControlText(dialog, kIdFontName, name, error);
      }
    }
  }
  if (document.empty() && line.effect.empty()) ReportClampedSettings(dialog, settingValues);
  int ok = 1;
  if (!document.empty()) ok = ReadDocument(dialog, document, error);
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
  if (ok && line.delay != -1)
    ok = ApplyControlText(dialog, kIdDelay, std::to_string(line.delay), error);
  if (ok && line.pause != -1)
    ok = ApplyControlText(dialog, kIdPause, std::to_string(line.pause), error);
  if (ok && line.frames != -1) {
    const int32_t row = DialogGetSelection(DialogItem(dialog, kIdEffect));
    const int32_t id = FramesControl(row);
    if (!id) {
      *error = std::string("--frames: the effect ") + EffectTable[row].name +
               " has no frame count (its length follows from its other controls)";
      ok = 0;
    } else {
      ok = ApplyControlText(dialog, id, std::to_string(line.frames), error);
    }
  }
  for (const auto& control : line.controls)
    if (ok) ok = ApplyControlText(dialog, control.first, control.second, error);
  if (!ok) {
    DestroyRunDialog(dialog);
    return nullptr;
  }
  SyncPickers(dialog);
  return dialog;
}

int SaveRunDocument(WindowHandle dialog, const std::string& path, std::string* error) {
  char* buffer = nullptr;
  size_t size = 0;
  FILE* stream = open_memstream(&buffer, &size);
  if (!stream) return *error = "out of memory", 0;
  const int written = SaveDocumentTo(dialog, stream);
  const int closed = fclose(stream) == 0;
  std::string text = buffer ? std::string(buffer, size) : std::string();
  free(buffer);
  if (!written || !closed) return *error = "out of memory", 0;
  // Documents written here are UTF-8, like every other text file of the system.
  const std::string utf8 = Windows1252ToUtf8(text);
  return WriteOutputBytes(path, utf8.data(), utf8.size(), 1, error);
}

int PrintControls(FILE* out, const CommandLine& line, const std::string& effect,
                  std::string* error) {
  const PageTable* table = &kMainDialogTable;
  if (!effect.empty()) {
    const int32_t row = FindEffectRow(effect);
    if (row < 0) return *error = "unknown effect: " + effect + " (see gm5 effects)", 0;
    table = nullptr;
    for (const PageTable& page : kPageTables)
      if (page.style == EffectStyle[row]) table = &page;
    if (!table) return *error = "the effect " + effect + " has no page of controls", 0;
  }
  WindowHandle dialog = CreateRunDialog(line, std::string(), error);
  if (!dialog) return 0;
  if (table != &kMainDialogTable)
    fprintf(out, "# %s: settings Style%03d...\n", EffectTable[FindEffectRow(effect)].name,
            table->style);
  for (int32_t i = 0; i < table->count; ++i) {
    const PageControl& c = table->controls[i];
    WindowHandle control = DialogItem(dialog, c.id);
    const char* tag = control ? ControlTag(DialogControlKind(control)) : nullptr;
    if (!tag) continue;
    char text[kControlLineSize] = "";
    FormatControlLine(control, text, sizeof text);
    const char* value = strchr(text, '=');
    std::string range = "-";
    if (c.range && (c.kind == kControlSpinEdit || c.kind == kControlSignedSpinEdit)) {
      range = c.range;
      const size_t comma = range.find(',');
      range = range.substr(0, comma) + ".." +
              range.substr(comma + 1, range.find(',', comma + 1) - comma - 1);
    } else if (DialogRowCount(control) > 0 && c.kind != kControlFontBox) {
      range = "0.." + std::to_string(DialogRowCount(control) - 1);
    } else if (c.kind == kControlCheckBox) {
      range = "0..1";
    } else if (c.kind == kControlColourButton) {
      range = "colour";
    }
    // Texts are quoted, so that a value with blanks stays one column.
    std::string shown = value ? value + 1 : "";
    if (c.kind == kControlTextField || c.kind == kControlFontBox) shown = "\"" + shown + "\"";
    fprintf(out, "%4d  %-6s  %-12s  %-12s  %s\n", c.id, tag, range.c_str(), shown.c_str(),
            c.caption ? c.caption : "");
  }
  DestroyRunDialog(dialog);
  return 1;
}
