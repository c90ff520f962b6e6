// The dialog port on real windows: a WindowHandle is an HWND.
#include <windows.h>

#include "platform/dialog.h"

namespace {

HWND AsWindow(WindowHandle handle) { return reinterpret_cast<HWND>(handle); }

struct EnumState {
  DialogChildVisitor visit;
  void* param;
};

BOOL CALLBACK VisitChild(HWND child, LPARAM state) {
  const EnumState* s = reinterpret_cast<const EnumState*>(state);
  return s->visit(reinterpret_cast<WindowHandle>(child), s->param) ? TRUE : FALSE;
}

}  // namespace

WindowHandle DialogItem(WindowHandle dialog, int32_t id) {
  return dialog ? reinterpret_cast<WindowHandle>(GetDlgItem(AsWindow(dialog), id)) : nullptr;
}

int32_t DialogItemId(WindowHandle control) {
  return control ? GetDlgCtrlID(AsWindow(control)) : 0;
}

void DialogShowItem(WindowHandle control, int show) {
  if (control) ShowWindow(AsWindow(control), show ? SW_SHOW : SW_HIDE);
}

int DialogItemVisible(WindowHandle control) {
  return control && (GetWindowLongPtrA(AsWindow(control), GWL_STYLE) & WS_VISIBLE) ? 1 : 0;
}

void DialogEnumChildren(WindowHandle dialog, DialogChildVisitor visit, void* param) {
  if (!dialog || !visit) return;
  EnumState state = {visit, param};
  EnumChildWindows(AsWindow(dialog), VisitChild, reinterpret_cast<LPARAM>(&state));
}
