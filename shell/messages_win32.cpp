// Message services on Windows: the string table of the library's resources and the modal dialogs
// "MessageBox" and "YesnoBox". The box's procedure puts the text in place, centres the box and
// ends it on OK, Cancel, Yes or No.
#include <windows.h>

#include "resources/resource_ids.h"
#include "shell/library_state.h"
#include "shell/messages.h"

namespace {

char messageBuffer[1024];

HINSTANCE ResourceModule() {
  return ModuleInstance ? static_cast<HINSTANCE>(ModuleInstance) : GetModuleHandleA(nullptr);
}

INT_PTR CALLBACK MessageBoxProc(HWND box, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_INITDIALOG:
      SetDlgItemTextA(box, IDC_MESSAGE_TEXT, reinterpret_cast<const char*>(lParam));
      CentreWindow(reinterpret_cast<WindowHandle>(box));
      return TRUE;
    case WM_COMMAND:
      switch (LOWORD(wParam)) {
        case kAnswerOk:
        case kAnswerCancel:
        case kAnswerYes:
        case kAnswerNo:
          EndDialog(box, LOWORD(wParam));
          return TRUE;
      }
      return FALSE;
  }
  return FALSE;
}

int32_t RunBox(const char* resource, WindowHandle window, const char* text) {
  RecordShownMessage(text);
  HWND owner = reinterpret_cast<HWND>(window);
  INT_PTR answer = DialogBoxParamA(ResourceModule(), resource, owner, MessageBoxProc,
                                   reinterpret_cast<LPARAM>(LastShownMessage()));
  if (owner) UpdateWindow(owner);
  return answer > 0 ? static_cast<int32_t>(answer) : 0;
}

}  // namespace

const char* LoadMessage(int32_t id) {
  if (id < 0 || id > 0xFFFF ||
      LoadStringA(ResourceModule(), static_cast<UINT>(id), messageBuffer, sizeof messageBuffer) <=
          0)
    lstrcpynA(messageBuffer, kMissingMessageText, sizeof messageBuffer);
  return messageBuffer;
}

int32_t ShowMessage(WindowHandle window, const char* text) {
  return RunBox("MessageBox", window, text);
}

int32_t AskYesNo(WindowHandle window, const char* text) {
  return RunBox("YesnoBox", window, text);
}

void CentreWindow(WindowHandle window) {
  HWND hwnd = reinterpret_cast<HWND>(window);
  RECT box;
  if (!hwnd || !GetWindowRect(hwnd, &box)) return;
  int width = box.right - box.left;
  int height = box.bottom - box.top;
  int left = (GetSystemMetrics(SM_CXSCREEN) - width) / 2;
  int top = (GetSystemMetrics(SM_CYSCREEN) - height) / 2;
  SetWindowPos(hwnd, nullptr, left, top, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}
