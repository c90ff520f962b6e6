// The About box: a small modal dialog from the library's resources, with the version filled in
// when it opens and closed by OK, Cancel or the close box.
#include "shell/about_box_win32.h"

#include "resources/resource_ids.h"
#include "shell/library_state.h"
#include "shell/messages.h"

namespace {

constexpr char kVersionText[] = "Version 5.0, free edition";

INT_PTR CALLBACK AboutProc(HWND box, UINT message, WPARAM wParam, LPARAM) {
  switch (message) {
    case WM_INITDIALOG:
      SetDlgItemTextA(box, IDC_ABOUT_VERSION, kVersionText);
      CentreWindow(reinterpret_cast<WindowHandle>(box));
      return TRUE;
    case WM_COMMAND:
      if (LOWORD(wParam) == IDOK || LOWORD(wParam) == IDCANCEL) {
        EndDialog(box, LOWORD(wParam));
        return TRUE;
      }
      return FALSE;
  }
  return FALSE;
}

}  // namespace

void ShowAboutBox(HWND owner) {
  HINSTANCE instance =
      ModuleInstance ? static_cast<HINSTANCE>(ModuleInstance) : GetModuleHandleA(nullptr);
  DialogBoxParamA(instance, MAKEINTRESOURCEA(IDD_ABOUT), owner, AboutProc, 0);
}
