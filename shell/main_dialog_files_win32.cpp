// Open, Save and Save as for the main dialog. The current document is the setting
// CurrentFileName; a choice in a file dialog replaces it. The hook gives each file dialog the
// size that the last one had (at first the host's), clamped to the screen and centred.
#include "shell/main_dialog_files_win32.h"

#include <commdlg.h>

#include <algorithm>
#include <cstring>

#include "documents/effect_document.h"
#include "documents/settings.h"
#include "shell/library_state.h"
#include "shell/skinned_button_win32.h"

namespace {

constexpr UINT kHookMessageSize = 1224;
constexpr DWORD kOpenFlags = 0x88182C;  // sizing, explorer, must exist, hook, hide read-only
constexpr DWORD kSaveFlags = 0x88002E;  // sizing, explorer, hook, hide read-only, overwrite prompt
constexpr char kFilter[] = "GM5 files\0*.GM5\0All files\0*.*\0";
constexpr char kUntitled[] = "untitled.gm5";
constexpr int kSmallestKeptSide = 128;

int keptWidth = 0, keptHeight = 0;

HINSTANCE LibraryInstance() {
  return ModuleInstance ? static_cast<HINSTANCE>(ModuleInstance) : GetModuleHandleA(nullptr);
}

char* CurrentFileName() {
  return SettingString("CurrentFileName");
}

// The name part of a path: what follows the last backslash, slash or colon.
const char* NamePart(const char* path) {
  const char* name = path;
  for (const char* p = path; *p; ++p)
    if (*p == '\\' || *p == '/' || *p == ':') name = p + 1;
  return name;
}

void TakeChosenPath(const char* path) {
  if (char* current = CurrentFileName())
    lstrcpynA(current, path, static_cast<int>(kSettingTextSize));
  // The folder of the choice is where the next file dialog opens.
  const size_t folder = static_cast<size_t>(NamePart(path) - path);
  if (folder > 0 && folder < kOpenPathSize) {
    std::memcpy(OpenPath(), path, folder);
    OpenPath()[folder] = 0;
  }
}

UINT_PTR CALLBACK FileDialogHook(HWND hook, UINT message, WPARAM, LPARAM) {
  HWND fileDialog = GetParent(hook);
  switch (message) {
    case WM_INITDIALOG:
      SkinButton(GetDlgItem(GetParent(hook), IDOK));
      SkinButton(GetDlgItem(GetParent(hook), IDCANCEL));
      PostMessageA(hook, kHookMessageSize, 0, 0);
      return 0;
    case kHookMessageSize: {
      RECT r;
      if (!fileDialog || !GetWindowRect(fileDialog, &r)) return 0;
      int width = r.right - r.left, height = r.bottom - r.top;
      if (keptWidth >= kSmallestKeptSide && keptHeight >= kSmallestKeptSide) {
        width = std::min(keptWidth, GetSystemMetrics(SM_CXSCREEN));
        height = std::min(keptHeight, GetSystemMetrics(SM_CYSCREEN));
      }
      SetWindowPos(fileDialog, nullptr, (GetSystemMetrics(SM_CXSCREEN) - width) / 2,
                   (GetSystemMetrics(SM_CYSCREEN) - height) / 2, width, height,
                   SWP_NOZORDER | SWP_NOACTIVATE);
      return 1;
    }
    case WM_DESTROY: {
      RECT r;
      if (fileDialog && GetWindowRect(fileDialog, &r)) {
        keptWidth = r.right - r.left;
        keptHeight = r.bottom - r.top;
      }
      return 0;
    }
  }
  return 0;
}

void PrepareFileDialog(OPENFILENAMEA* dialog, HWND owner, char* path, DWORD flags) {
  std::memset(dialog, 0, sizeof *dialog);
  dialog->lStructSize = sizeof *dialog;
  dialog->hwndOwner = owner;
  dialog->hInstance = LibraryInstance();
  dialog->lpstrFilter = kFilter;
  dialog->nFilterIndex = 1;
  dialog->lpstrFile = path;
  dialog->nMaxFile = MAX_PATH;
  dialog->lpstrDefExt = "GM5";
  dialog->Flags = flags;
  dialog->lpfnHook = FileDialogHook;
}

}  // namespace

void SetFileDialogSize(int width, int height) {
  keptWidth = std::min(width, GetSystemMetrics(SM_CXSCREEN));
  keptHeight = std::min(height, GetSystemMetrics(SM_CYSCREEN));
}

void ShowOpenSaveMenu(HWND dialog) {
  HMENU menu = CreatePopupMenu();
  if (!menu) return;
  AppendMenuA(menu, MF_STRING, kCommandOpen, "Open");
  AppendMenuA(menu, MF_STRING, kCommandSave, "Save");
  AppendMenuA(menu, MF_STRING, kCommandSaveAs, "Save as...");
  POINT cursor = {};
  GetCursorPos(&cursor);
  TrackPopupMenu(menu, TPM_LEFTALIGN | TPM_TOPALIGN | TPM_RIGHTBUTTON, cursor.x, cursor.y, 0,
                 dialog, nullptr);
  DestroyMenu(menu);
}

void OpenDocument(HWND dialog) {
  char path[MAX_PATH] = "";
  char folder[MAX_PATH] = "";
  if (const char* current = CurrentFileName()) {
    const size_t length = static_cast<size_t>(NamePart(current) - current);
    if (length < sizeof folder) {
      std::memcpy(folder, current, length);
      folder[length] = 0;
    }
  }
  OPENFILENAMEA open;
  PrepareFileDialog(&open, dialog, path, kOpenFlags);
  open.lpstrInitialDir = folder[0] ? folder : (OpenPath()[0] ? OpenPath() : nullptr);
  if (!GetOpenFileNameA(&open)) return;
  TakeChosenPath(path);
  LoadDocument(reinterpret_cast<WindowHandle>(dialog), path);
}

void SaveDocumentAs(HWND dialog) {
  char path[MAX_PATH] = "";
  if (const char* current = CurrentFileName()) lstrcpynA(path, NamePart(current), MAX_PATH);
  OPENFILENAMEA save;
  PrepareFileDialog(&save, dialog, path, kSaveFlags);
  save.lpstrInitialDir = OpenPath()[0] ? OpenPath() : nullptr;
  if (!GetSaveFileNameA(&save)) return;
  TakeChosenPath(path);
  SaveDocument(reinterpret_cast<WindowHandle>(dialog), path);
}

void SaveCurrentDocument(HWND dialog) {
  const char* current = CurrentFileName();
  if (!current || !current[0] || !lstrcmpiA(NamePart(current), kUntitled)) {
    SaveDocumentAs(dialog);
    return;
  }
  SaveDocument(reinterpret_cast<WindowHandle>(dialog), current);
}
