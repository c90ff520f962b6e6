#include "tests/support/value_dialog.h"

#include <cstdio>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "controls/direction_picker.h"
#include "controls/value_controls.h"

namespace {

struct Change {
  int seed;
};

int ChangeOne(WindowHandle control, void* param) {
  const int seed = static_cast<Change*>(param)->seed;
  WindowHandle dialog = DialogParent(control);
  const int32_t id = DialogItemId(control);
  const ControlKind kind = DialogControlKind(control);
  const int step = seed * 7 + id;
  switch (kind) {
    case kControlSpinEdit:
    case kControlSignedSpinEdit: {
      char range[64] = "";
      DialogGetText(DialogItem(dialog, id + kUpDownIdOffset), range, sizeof range);
      const SpinRange r = ParseSpinRange(range);
      SetDialogItemInt(dialog, id, static_cast<uint32_t>(r.min + step % (r.max - r.min + 1)), 1);
      break;
    }
    case kControlColourButton:
      SetDialogItemInt(dialog, id, (static_cast<uint32_t>(step) * 2654435u) & 0xFFFFFF, 0);
      break;
    case kControlCheckBox:
      DialogSetCheck(control, step % 2);
      break;
    case kControlTextField: {
      const std::string text = "Text " + std::to_string(id) + " of " + std::to_string(seed);
      DialogSetText(control, text.c_str());
      break;
    }
    case kControlComboList:
    case kControlListBoxList:
    case kControlFontBox:
      if (DialogRowCount(control) > 0) DialogSetSelection(control, step % DialogRowCount(control));
      break;
    case kControlShadowPicker:
    case kControlScroll4Picker:
    case kControlScroll2Picker:
    case kControlScrollHVPicker: {
      const PickerShape* shape = FindPickerShape(kind);
      const int cell = step % shape->cellCount;
      DialogPickerClick(control, shape->left[cell] + 3, shape->top[cell] + 3);
      return 1;
    }
    default:
      return 1;
  }
  StoreControlValue(control);
  return 1;
}

int StateOf(WindowHandle control, void* param) {
  auto* lines = static_cast<std::vector<std::string>*>(param);
  char line[2048];
  if (FormatControlLine(control, line, sizeof line) == 0) return 1;
  std::string entry = line;
  int32_t held = 0;
  if (FindPickerShape(DialogControlKind(control)) && DialogPickerValue(control, &held))
    entry += " held " + std::to_string(held);
  lines->push_back(entry);
  return 1;
}

}  // namespace

void AddTestFonts(WindowHandle dialog) {
  WindowHandle box = DialogItem(dialog, 53);
  for (const char* name : {"Arial", "Courier New", "Impact", "Times New Roman"})
    DialogAddRow(box, name);
  DialogSelectString(box, "Impact");
}

void ChangeEveryControl(WindowHandle dialog, int seed) {
  Change change = {seed};
  DialogEnumChildren(dialog, ChangeOne, &change);
}

std::vector<std::string> DialogState(WindowHandle dialog) {
  std::vector<std::string> lines;
  DialogEnumChildren(dialog, StateOf, &lines);
  return lines;
}

namespace {

// Test programs run in parallel, one test per process: each process takes folders of its own,
// named with a random tag, and removes them when it ends.
struct MadeFolders {
  std::string tag = std::to_string(std::random_device()());
  std::vector<std::filesystem::path> folders;
  ~MadeFolders() {
    std::error_code error;
    for (const std::filesystem::path& folder : folders) std::filesystem::remove_all(folder, error);
  }
};

}  // namespace

std::string MakeTempFolder(const char* name) {
  static MadeFolders made;
  std::error_code error;
  std::filesystem::path folder =
      std::filesystem::temp_directory_path(error) / (std::string(name) + "-" + made.tag);
  std::filesystem::remove_all(folder, error);
  std::filesystem::create_directories(folder, error);
  made.folders.push_back(folder);
  return folder.string() + "/";
}
