// The main dialog's window procedure. This is its start and its end: it keeps the host, asks the
// host's settings, tells a host without a service, centres itself and ends on Cancel. The rest of
// its behaviour is added control by control.
#include <windows.h>

#include "resources/resource_ids.h"
#include "shell/library_state.h"
#include "shell/main_dialog.h"
#include "shell/messages.h"

int32_t SoftButtons = 0;

namespace {

void AskHostSettings() {
  CallHost(nullptr, HostOpGetSetting, 0, reinterpret_cast<uint64_t>("EditListMaximum"));
  const HostSetting* soft = reinterpret_cast<const HostSetting*>(
      CallHost(nullptr, HostOpGetSetting, 0, reinterpret_cast<uint64_t>("SoftButtons")));
  if (soft && (soft->flags & kHostSettingInteger) && soft->value)
    SoftButtons = *static_cast<const int32_t*>(soft->value);
}

INT_PTR OnInitDialog(HWND dialog, HostRecord* host) {
  CurrentHost = host;
  AskHostSettings();
  uint32_t afterStart = kMessageAfterStart;
  if (!host || !host->service) {
    ShowMessage(reinterpret_cast<WindowHandle>(dialog), "Internal error");
    afterStart = kMessageStartFailed;
  }
  SetFocus(GetDlgItem(dialog, IDC_BUILD));
  SetWindowTextA(dialog, "Glyph Motion #5");
  CentreWindow(reinterpret_cast<WindowHandle>(dialog));
  PostMessageA(dialog, afterStart, 0, 0);
  return FALSE;  // focus is set
}

INT_PTR CALLBACK MainDialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_INITDIALOG:
      return OnInitDialog(dialog, reinterpret_cast<HostRecord*>(lParam));
    case WM_COMMAND:
      if (LOWORD(wParam) == IDC_CANCEL) {
        EndDialog(dialog, 0);
        return TRUE;
      }
      return FALSE;
  }
  return FALSE;
}

}  // namespace

int64_t RunMainDialog(WindowHandle parent, HostRecord* host) {
  HINSTANCE instance =
      ModuleInstance ? static_cast<HINSTANCE>(ModuleInstance) : GetModuleHandleA(nullptr);
  return DialogBoxParamA(instance, MAKEINTRESOURCEA(IDD_MAIN), reinterpret_cast<HWND>(parent),
                         MainDialogProc, reinterpret_cast<LPARAM>(host));
}
