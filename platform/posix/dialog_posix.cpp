// The dialog port on the headless model. A window record is either a dialog (no parent) or one of
// its controls; the dialog keeps its controls in creation order.
#include <memory>
#include <new>
#include <vector>

#include "platform/posix/headless_dialog.h"

struct DialogWindow {
  int32_t id;
  int visible;
  DialogWindow* parent;
  std::vector<std::unique_ptr<DialogWindow>> children;
};

WindowHandle HeadlessDialogCreate() { return new (std::nothrow) DialogWindow{0, 1, nullptr, {}}; }

WindowHandle HeadlessDialogAddControl(WindowHandle dialog, int32_t id, int visible) {
  if (!dialog) return nullptr;
  std::unique_ptr<DialogWindow> control(
      new (std::nothrow) DialogWindow{id, visible ? 1 : 0, dialog, {}});
  if (!control) return nullptr;
  dialog->children.push_back(std::move(control));
  return dialog->children.back().get();
}

void HeadlessDialogDestroy(WindowHandle dialog) { delete dialog; }

WindowHandle DialogItem(WindowHandle dialog, int32_t id) {
  if (!dialog) return nullptr;
  for (const std::unique_ptr<DialogWindow>& child : dialog->children)
    if (child->id == id) return child.get();
  return nullptr;
}

int32_t DialogItemId(WindowHandle control) { return control ? control->id : 0; }

void DialogShowItem(WindowHandle control, int show) {
  if (control) control->visible = show ? 1 : 0;
}

int DialogItemVisible(WindowHandle control) { return control ? control->visible : 0; }

void DialogEnumChildren(WindowHandle dialog, DialogChildVisitor visit, void* param) {
  if (!dialog || !visit) return;
  for (const std::unique_ptr<DialogWindow>& child : dialog->children)
    if (!visit(child.get(), param)) return;
}
