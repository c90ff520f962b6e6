// Effect pages on Windows: the page dialog is made from its resource only to be copied. On
// WM_INITDIALOG each of its children gets a hidden twin in the main dialog, with the same class,
// styles, id, text and place; then the page ends and is destroyed, and only the twins live on.
#include <windows.h>
#include <commctrl.h>


#include "platform/dialog.h"
#include "platform/win32/code_module_win32.h"
#include "platform/win32/dialog_win32.h"

namespace {

constexpr int kComboDropHeight = 200;  // room below a combo box for its list

struct CloneState {
  HWND page;     // the page being copied
  HWND target;   // the main dialog
  HFONT font;    // the main dialog's font
  int failures;  // twins that could not be made
};

BOOL CALLBACK MakeTwin(HWND child, LPARAM param) {
  CloneState* state = reinterpret_cast<CloneState*>(param);
  HWND page = state->page;
  if (GetParent(child) != page) return TRUE;  // a control's own child windows come with it
  char windowClass[64];
  char text[256];
  if (!GetClassNameA(child, windowClass, sizeof windowClass)) {
    ++state->failures;
    return TRUE;
  }
  GetWindowTextA(child, text, sizeof text);
  RECT r;
  GetWindowRect(child, &r);
  MapWindowPoints(nullptr, page, reinterpret_cast<POINT*>(&r), 2);
  if (lstrcmpiA(windowClass, "combobox") == 0) r.bottom += kComboDropHeight;
  const DWORD style = static_cast<DWORD>(GetWindowLongA(child, GWL_STYLE)) & ~WS_VISIBLE;
  const DWORD exStyle = static_cast<DWORD>(GetWindowLongA(child, GWL_EXSTYLE));
  HWND twin = CreateWindowExA(
      exStyle, windowClass, text, style, r.left, r.top, r.right - r.left, r.bottom - r.top,
      state->target, reinterpret_cast<HMENU>(static_cast<INT_PTR>(GetDlgCtrlID(child))),
      reinterpret_cast<HINSTANCE>(GetWindowLongPtrA(child, GWLP_HINSTANCE)), nullptr);
  if (!twin) {
    ++state->failures;
    return TRUE;
  }
  ShowWindow(twin, SW_HIDE);
  SendMessageA(twin, WM_SETFONT, reinterpret_cast<WPARAM>(state->font), FALSE);
  if (lstrcmpiA(windowClass, UPDOWN_CLASSA) == 0) SetUpDownRange(twin, text);
  return TRUE;
}

INT_PTR CALLBACK ClonePageProc(HWND page, UINT message, WPARAM, LPARAM lParam) {
  if (message != WM_INITDIALOG) return FALSE;
  CloneState* state = reinterpret_cast<CloneState*>(lParam);
  state->page = page;
  EnumChildWindows(page, MakeTwin, reinterpret_cast<LPARAM>(state));
  EndDialog(page, 0);
  return FALSE;
}

}  // namespace

int DialogClonePage(WindowHandle dialog, int32_t resourceId) {
  HWND target = reinterpret_cast<HWND>(dialog);
  if (!target) return 0;
  // The pages hold updowns: their class must exist before the page does. Classes of the control
  // kinds' own are registered with the kinds.
  INITCOMMONCONTROLSEX controls = {sizeof controls, ICC_UPDOWN_CLASS};
  InitCommonControlsEx(&controls);
  CloneState state = {nullptr, target,
                      reinterpret_cast<HFONT>(SendMessageA(target, WM_GETFONT, 0, 0)), 0};
  HWND page = CreateDialogParamA(CodeModule(), MAKEINTRESOURCEA(resourceId), target, ClonePageProc,
                                 reinterpret_cast<LPARAM>(&state));
  if (!page) return 0;
  ShowWindow(page, SW_HIDE);
  DestroyWindow(page);
  return state.failures == 0;
}
