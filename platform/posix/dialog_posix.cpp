// The dialog port on the headless model. A window record is either a dialog (no parent) or one of
// its controls; the dialog keeps its controls in creation order, its running timers and the
// private messages posted to it. Behaviour per kind comes from the kinds' installed rows, as on
// Windows; pages are made by the installed page maker, since there are no dialog resources.
#include <cctype>
#include <cstdio>
#include <cstring>
#include <deque>
#include <map>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "platform/posix/headless_dialog.h"

struct DialogWindow {
  int32_t id;
  int visible;
  DialogWindow* parent;
  std::vector<std::unique_ptr<DialogWindow>> children;
  ControlKind kind = kControlOther;
  int enabled = 1;
  int checked = 0;
  std::string text;
  std::vector<std::string> rows;
  int selection = -1;
  void* userData = nullptr;
  std::map<int32_t, uint32_t> timers;
  std::deque<uint32_t> posted;
};

namespace {

DialogWindow* NewWindow(int32_t id, int visible, DialogWindow* parent) {
  DialogWindow* w = new (std::nothrow) DialogWindow;
  if (!w) return nullptr;
  w->id = id;
  w->visible = visible ? 1 : 0;
  w->parent = parent;
  return w;
}

int IsList(const DialogWindow* w) {
  return w->kind == kControlComboList || w->kind == kControlListBoxList ||
         w->kind == kControlFontBox;
}

int StartsWithIgnoringCase(const std::string& row, const char* text) {
  for (size_t i = 0; text[i]; ++i)
    if (i >= row.size() || std::tolower(static_cast<unsigned char>(row[i])) !=
                               std::tolower(static_cast<unsigned char>(text[i])))
      return 0;
  return 1;
}

}  // namespace

WindowHandle HeadlessDialogCreate() {
  return NewWindow(0, 1, nullptr);
}

WindowHandle HeadlessDialogAddControl(WindowHandle dialog, int32_t id, int visible) {
  if (!dialog) return nullptr;
  std::unique_ptr<DialogWindow> control(NewWindow(id, visible, dialog));
  if (!control) return nullptr;
  dialog->children.push_back(std::move(control));
  return dialog->children.back().get();
}

void HeadlessDialogDestroy(WindowHandle dialog) {
  if (!dialog) return;
  // Controls own blocks (a picker's value, a material button's record), as their windows do on
  // Windows.
  for (const std::unique_ptr<DialogWindow>& child : dialog->children) {
    const ControlKindProcs* row = DialogKindProcs(child->kind);
    if (row && row->destroy) row->destroy(child.get());
  }
  delete dialog;
}

WindowHandle DialogCreate() {
  return HeadlessDialogCreate();
}

WindowHandle DialogAddControl(WindowHandle dialog, int32_t id, ControlKind kind, const char* text) {
  WindowHandle control = HeadlessDialogAddControl(dialog, id, 1);
  if (!control) return nullptr;
  control->kind = kind;
  // A list shows its rows; its text is the selected row's.
  if (!IsList(control) && text) control->text = text;
  return control;
}

void DialogSetControlKind(WindowHandle control, ControlKind kind) {
  if (control) control->kind = kind;
}

void DialogDestroy(WindowHandle dialog) {
  HeadlessDialogDestroy(dialog);
}

WindowHandle DialogItem(WindowHandle dialog, int32_t id) {
  if (!dialog) return nullptr;
  for (const std::unique_ptr<DialogWindow>& child : dialog->children)
    if (child->id == id) return child.get();
  return nullptr;
}

int32_t DialogItemId(WindowHandle control) {
  return control ? control->id : 0;
}

void DialogShowItem(WindowHandle control, int show) {
  if (control) control->visible = show ? 1 : 0;
}

int DialogItemVisible(WindowHandle control) {
  return control ? control->visible : 0;
}

void DialogEnumChildren(WindowHandle dialog, DialogChildVisitor visit, void* param) {
  if (!dialog || !visit) return;
  for (const std::unique_ptr<DialogWindow>& child : dialog->children)
    if (!visit(child.get(), param)) return;
}

WindowHandle DialogParent(WindowHandle control) {
  return control ? control->parent : nullptr;
}

ControlKind DialogControlKind(WindowHandle control) {
  return control ? control->kind : kControlOther;
}

int DialogGetText(WindowHandle control, char* text, int size) {
  if (!text || size <= 0) return 0;
  text[0] = 0;
  if (!control) return 0;
  const size_t n = control->text.size() < static_cast<size_t>(size - 1)
                       ? control->text.size()
                       : static_cast<size_t>(size - 1);
  std::memcpy(text, control->text.data(), n);
  text[n] = 0;
  return static_cast<int>(n);
}

int DialogGetTextLength(WindowHandle control) {
  return control ? static_cast<int>(control->text.size()) : 0;
}

void DialogSetText(WindowHandle control, const char* text) {
  if (control) control->text = text ? text : "";
}

int DialogGetCheck(WindowHandle control) {
  return control ? control->checked : 0;
}

void DialogSetCheck(WindowHandle control, int checked) {
  if (control) control->checked = checked ? 1 : 0;
}

void DialogAddRow(WindowHandle control, const char* text) {
  if (control && IsList(control)) control->rows.push_back(text ? text : "");
}

void DialogClearRows(WindowHandle control) {
  if (!control) return;
  control->rows.clear();
  control->selection = -1;
  if (IsList(control)) control->text.clear();
}

int DialogRowCount(WindowHandle control) {
  return control ? static_cast<int>(control->rows.size()) : 0;
}

int DialogGetSelection(WindowHandle control) {
  return control ? control->selection : -1;
}

void DialogSetSelection(WindowHandle control, int row) {
  if (!control || !IsList(control)) return;
  // An index outside the rows clears the selection, as CB_SETCURSEL does.
  if (row < 0 || row >= static_cast<int>(control->rows.size())) {
    control->selection = -1;
    control->text.clear();
    return;
  }
  control->selection = row;
  control->text = control->rows[row];
}

int DialogSelectString(WindowHandle control, const char* text) {
  if (!control || !IsList(control) || !text) return -1;
  for (size_t row = 0; row < control->rows.size(); ++row)
    if (StartsWithIgnoringCase(control->rows[row], text)) {
      DialogSetSelection(control, static_cast<int>(row));
      return static_cast<int>(row);
    }
  return -1;
}

void* DialogGetUserData(WindowHandle control) {
  return control ? control->userData : nullptr;
}

void DialogSetUserData(WindowHandle control, void* data) {
  if (control) control->userData = data;
}

void DialogEnableItem(WindowHandle control, int enable) {
  if (control) control->enabled = enable ? 1 : 0;
}

int DialogItemEnabled(WindowHandle control) {
  return control ? control->enabled : 0;
}

void DialogSetTimer(WindowHandle dialog, int32_t timerId, uint32_t milliseconds) {
  if (dialog) dialog->timers[timerId] = milliseconds;
}

void DialogKillTimer(WindowHandle dialog, int32_t timerId) {
  if (dialog) dialog->timers.erase(timerId);
}

uint32_t DialogTimerPeriod(WindowHandle dialog, int32_t timerId) {
  if (!dialog) return 0;
  const auto found = dialog->timers.find(timerId);
  return found == dialog->timers.end() ? 0 : found->second;
}

void DialogPostMessage(WindowHandle dialog, uint32_t message) {
  if (dialog) dialog->posted.push_back(message);
}

uint32_t DialogTakePostedMessage(WindowHandle dialog) {
  if (!dialog || dialog->posted.empty()) return 0;
  const uint32_t message = dialog->posted.front();
  dialog->posted.pop_front();
  return message;
}

int DialogClonePage(WindowHandle dialog, int32_t resourceId) {
  const DialogBehaviour* behaviour = DialogInstalledBehaviour();
  return behaviour && behaviour->makePage ? behaviour->makePage(dialog, resourceId) : 0;
}

void DialogPickerSetUp(WindowHandle picker, int32_t value, int32_t* saved) {
  const ControlKindProcs* row = DialogKindProcs(DialogControlKind(picker));
  if (picker && row && row->setUp) row->setUp(picker, value, saved);
}

void DialogPickerReadBack(WindowHandle picker) {
  const ControlKindProcs* row = DialogKindProcs(DialogControlKind(picker));
  if (picker && row && row->readBack) row->readBack(picker);
}

void DialogPickerClick(WindowHandle picker, int x, int y) {
  if (!picker) return;
  const ControlKindProcs* row = DialogKindProcs(picker->kind);
  if (row && row->press) row->press(picker, x, y);
  // The release notifies the parent whether or not a cell was hit.
  DialogNotify(picker->parent, picker->id, 0);
}

int DialogWriteLine(WindowHandle control, void* file) {
  const ControlKindProcs* row = DialogKindProcs(DialogControlKind(control));
  if (!file || !control || !row || !row->formatLine) return 0;
  std::string line(kControlLineSize, '\0');
  if (row->formatLine(control, line.data(), line.size()) == 0) return 0;
  std::fprintf(static_cast<std::FILE*>(file), "%s\n", line.c_str());
  return 1;
}

int DialogReadLine(WindowHandle control, const char* line) {
  const ControlKindProcs* row = DialogKindProcs(DialogControlKind(control));
  return control && row && row->takeLine ? row->takeLine(control, line) : 0;
}

void DialogNotify(WindowHandle dialog, int32_t id, int32_t notification) {
  const DialogBehaviour* behaviour = DialogInstalledBehaviour();
  if (behaviour && behaviour->command) behaviour->command(dialog, id, notification);
}
