// The Matrix dialog's window: the tiles of the current group as cells of an owner-drawn
// multi-column list, the fill preview, the group combo and the "+" and "-" buttons (with Shift:
// the group itself). The steps are those of matrix_dialog.cpp; this file shows them and asks.
#include "materials/matrix_dialog_win32.h"

#include <windows.h>
#include <shellapi.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "materials/data_folder.h"
#include "materials/matrix_dialog.h"
#include "platform/cursor.h"
#include "platform/win32/code_module_win32.h"
#include "resources/resource_ids.h"
#include "shell/host_interface.h"
#include "shell/messages.h"
#include "shell/packed_dib.h"
#include "shell/paint_dib_win32.h"

namespace {

constexpr int kCellSide = 52;  // pixels of a list cell
constexpr int kCellMargin = 3;
constexpr UINT kDeleteCommand = 1;

struct MatrixRun {
  MatrixDialogState state;
  TileRef* target = nullptr;
};

WindowHandle AsHandle(HWND window) {
  return reinterpret_cast<WindowHandle>(window);
}

MatrixRun* RunOf(HWND dialog) {
  return reinterpret_cast<MatrixRun*>(GetWindowLongPtrA(dialog, DWLP_USER));
}

int ShiftHeld() {
  return (GetKeyState(VK_SHIFT) & 0x8000) != 0;
}

void Tell(HWND dialog, const char* text) {
  ShowMessage(AsHandle(dialog), text);
}

// The list gets one item per tile; owner-drawn items without strings carry no text.
void FillTileList(HWND dialog, MatrixRun* run) {
  HWND list = GetDlgItem(dialog, IDC_MATRIX_TILES);
  SendMessageA(list, WM_SETREDRAW, FALSE, 0);
  SendMessageA(list, LB_RESETCONTENT, 0, 0);
  for (size_t i = 0; i < run->state.list.tiles.size(); ++i)
    SendMessageA(list, LB_ADDSTRING, 0, static_cast<LPARAM>(i));
  SendMessageA(list, WM_SETREDRAW, TRUE, 0);
  InvalidateRect(list, nullptr, TRUE);
}

void ShowTileSize(HWND dialog, MovableHandle image) {
  char text[64] = "";
  ScopedLock lock(image);
  if (lock) {
    const BitmapInfoHeader* h = reinterpret_cast<const BitmapInfoHeader*>(lock.bytes);
    std::snprintf(text, sizeof text, kMatrixSizeFormat, h->biWidth, h->biHeight);
  }
  SetDlgItemTextA(dialog, IDC_MATRIX_SIZE, text);
}

void Pick(HWND dialog, MatrixRun* run, int32_t position) {
  if (!PickMatrixTile(&run->state, position)) return;
  InvalidateRect(GetDlgItem(dialog, IDC_MATRIX_PREVIEW), nullptr, FALSE);
  ShowTileSize(dialog, run->state.tile.image);
}

void FillGroupCombo(HWND dialog) {
  HWND combo = GetDlgItem(dialog, IDC_MATRIX_GROUP);
  SendMessageA(combo, CB_RESETCONTENT, 0, 0);
  std::vector<std::string> names = ListMatrixGroups();
  const std::string current = CurrentMatrixGroup();
  int found = 0;
  for (const std::string& name : names) found |= _stricmp(name.c_str(), current.c_str()) == 0;
  if (!found) names.insert(names.begin(), current);  // the current group before its file exists
  for (const std::string& name : names)
    SendMessageA(combo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(name.c_str()));
  SendMessageA(combo, CB_SELECTSTRING, static_cast<WPARAM>(-1),
               reinterpret_cast<LPARAM>(current.c_str()));
}

int NeedsWriteable(HWND dialog, MatrixRun* run) {
  if (run->state.list.writeable) return 1;
  Tell(dialog, kMatrixNotWriteable);
  return 0;
}

void AddTileFromHost(HWND dialog, MatrixRun* run) {
  char path[1024] = "";
  if (!CallHost(nullptr, HostOpSelectImageFile, 0, reinterpret_cast<uint64_t>(path))) return;
  MovableHandle picture = reinterpret_cast<MovableHandle>(
      CallHost(nullptr, HostOpLoadImageFile, 0, reinterpret_cast<uint64_t>(path)));
  if (!picture) {
    Tell(dialog, LoadMessage(kMessageReadError));
    return;
  }
  switch (AddMatrixTile(&run->state, picture)) {
    case kTileAdded: {
      HWND list = GetDlgItem(dialog, IDC_MATRIX_TILES);
      const LRESULT item = SendMessageA(list, LB_ADDSTRING, 0,
                                        static_cast<LPARAM>(run->state.list.tiles.size() - 1));
      SendMessageA(list, LB_SETTOPINDEX, static_cast<WPARAM>(item), 0);
      break;
    }
    case kTileTooLarge:
      Tell(dialog, kMatrixTooLarge);
      break;
    case kTileMemoryError:
      Tell(dialog, LoadMessage(kMessageMemoryError));
      break;
    case kTileNotAdded:
      Tell(dialog, kMatrixAddFailed);
      break;
  }
}

void DeleteSelectedTile(HWND dialog, MatrixRun* run) {
  HWND list = GetDlgItem(dialog, IDC_MATRIX_TILES);
  const int32_t position = static_cast<int32_t>(SendMessageA(list, LB_GETCURSEL, 0, 0));
  const int32_t next = DeleteMatrixTile(&run->state, position);
  if (next == -2) return;
  FillTileList(dialog, run);
  if (next >= 0) {
    SendMessageA(list, LB_SETCURSEL, static_cast<WPARAM>(next), 0);
    Pick(dialog, run, next);
  }
}

// The name dialog: the edit starts from "Untitled"; OK hands back its text.
INT_PTR CALLBACK NameProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_INITDIALOG:
      SetWindowLongPtrA(dialog, DWLP_USER, lParam);
      SetDlgItemTextA(dialog, IDC_MATRIX_NAME_TEXT, kMatrixUntitled);
      CentreWindow(AsHandle(dialog));
      return TRUE;
    case WM_COMMAND:
      if (LOWORD(wParam) == IDOK) {
        std::string* name = reinterpret_cast<std::string*>(GetWindowLongPtrA(dialog, DWLP_USER));
        char text[kDataPathSize] = "";
        GetDlgItemTextA(dialog, IDC_MATRIX_NAME_TEXT, text, sizeof text);
        *name = text;
        EndDialog(dialog, IDOK);
        return TRUE;
      }
      if (LOWORD(wParam) == IDCANCEL) {
        EndDialog(dialog, IDCANCEL);
        return TRUE;
      }
      return FALSE;
  }
  return FALSE;
}

void SaveGroupUnderNewName(HWND dialog, MatrixRun* run) {
  std::string name;
  if (DialogBoxParamA(CodeModule(), MAKEINTRESOURCEA(IDD_MATRIX_NAME), dialog, NameProc,
                      reinterpret_cast<LPARAM>(&name)) != IDOK ||
      name.empty())
    return;
  SaveMatrixGroupAs(&run->state, name.c_str());
  FillGroupCombo(dialog);
}

void DeleteGroup(HWND dialog, MatrixRun* run) {
  if (!run->state.list.writeable) {
    Tell(dialog, kMatrixPrimaryKept);
    return;
  }
  const std::string name = CurrentMatrixGroup();
  char question[1024];
  std::snprintf(question, sizeof question, kMatrixDeleteQuestion, name.c_str());
  if (AskYesNo(AsHandle(dialog), question) != kAnswerYes) return;
  char path[kDataPathSize + 1] = {};
  if (!CurrentMatrixPath(path, kDataPathSize)) return;
  // The file goes to the recycle bin; the name list ends in two zeros.
  SHFILEOPSTRUCTA operation = {};
  operation.hwnd = dialog;
  operation.wFunc = FO_DELETE;
  operation.pFrom = path;
  operation.fFlags = FOF_ALLOWUNDO | FOF_NOCONFIRMATION | FOF_SILENT;
  SHFileOperationA(&operation);
  ReturnToPrimaryGroup(&run->state);
  FillGroupCombo(dialog);
  FillTileList(dialog, run);
}

void ChooseGroup(HWND dialog, MatrixRun* run) {
  HWND combo = GetDlgItem(dialog, IDC_MATRIX_GROUP);
  const LRESULT row = SendMessageA(combo, CB_GETCURSEL, 0, 0);
  char name[kDataPathSize] = "";
  if (row < 0 || SendMessageA(combo, CB_GETLBTEXTLEN, static_cast<WPARAM>(row), 0) >=
                     static_cast<LRESULT>(sizeof name))
    return;
  SendMessageA(combo, CB_GETLBTEXT, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(name));
  if (!OpenMatrixGroup(&run->state, name)) Tell(dialog, kMatrixLoadFailed);
  FillTileList(dialog, run);
}

void Finish(HWND dialog, MatrixRun* run, int accept) {
  if (accept && run->state.dirty) {
    WaitCursor wait;
    EndMatrixDialog(&run->state, 1, run->target);
  } else {
    EndMatrixDialog(&run->state, accept, run->target);
  }
  EndDialog(dialog, accept ? IDOK : IDCANCEL);
}

void ShowCellMenu(HWND dialog, MatrixRun* run, HWND list, LPARAM at) {
  POINT point = {static_cast<short>(LOWORD(at)), static_cast<short>(HIWORD(at))};
  POINT client = point;
  ScreenToClient(list, &client);
  const LRESULT hit = SendMessageA(list, LB_ITEMFROMPOINT, 0, MAKELPARAM(client.x, client.y));
  if (HIWORD(hit) || LOWORD(hit) >= run->state.list.tiles.size()) return;  // outside the cells
  SendMessageA(list, LB_SETCURSEL, LOWORD(hit), 0);
  Pick(dialog, run, LOWORD(hit));
  HMENU menu = CreatePopupMenu();
  if (!menu) return;
  AppendMenuA(menu, MF_STRING, kDeleteCommand, "&Delete");
  const UINT chosen = TrackPopupMenu(menu, TPM_RETURNCMD | TPM_LEFTALIGN | TPM_RIGHTBUTTON, point.x,
                                     point.y, 0, dialog, nullptr);
  DestroyMenu(menu);
  if (chosen == kDeleteCommand && NeedsWriteable(dialog, run)) DeleteSelectedTile(dialog, run);
}

// A tile shrunk (never enlarged) into its cell, keeping its shape; the selected cell is framed.
void DrawCell(const DRAWITEMSTRUCT* item, MatrixRun* run) {
  const RECT& r = item->rcItem;
  FillRect(item->hDC, &r, GetSysColorBrush(COLOR_WINDOW));
  if (item->itemID < run->state.list.tiles.size()) {
    MovableHandle tile = run->state.list.tiles[item->itemID];
    ScopedLock lock(tile);
    if (lock && IsReadablePackedDib(lock.bytes, MovableSize(tile))) {
      const BitmapInfoHeader* h = reinterpret_cast<const BitmapInfoHeader*>(lock.bytes);
      const int room = kCellSide - 2 * kCellMargin;
      int width = h->biWidth, height = h->biHeight;
      if (width > room || height > room) {
        if (width >= height) {
          height = std::max(1, height * room / width);
          width = room;
        } else {
          width = std::max(1, width * room / height);
          height = room;
        }
      }
      const int left = r.left + (r.right - r.left - width) / 2;
      const int top = r.top + (r.bottom - r.top - height) / 2;
      const int oldMode = SetStretchBltMode(item->hDC, HALFTONE);
      SetBrushOrgEx(item->hDC, 0, 0, nullptr);
      StretchDIBits(item->hDC, left, top, width, height, 0, 0, h->biWidth, h->biHeight,
                    DibBits(lock.bytes), reinterpret_cast<const BITMAPINFO*>(lock.bytes),
                    DIB_RGB_COLORS, SRCCOPY);
      SetStretchBltMode(item->hDC, oldMode);
    }
  }
  if (item->itemState & ODS_SELECTED) {
    RECT frame = r;
    for (int i = 0; i < 2; ++i) {
      FrameRect(item->hDC, &frame, GetSysColorBrush(COLOR_HIGHLIGHT));
      InflateRect(&frame, -1, -1);
    }
  }
  if (item->itemState & ODS_FOCUS) DrawFocusRect(item->hDC, &r);
}

void DrawPreview(const DRAWITEMSTRUCT* item, MatrixRun* run) {
  TileRef tile = run->state.tile;
  tile.rect[0] = tile.rect[1] = 0;
  tile.rect[2] = item->rcItem.right - item->rcItem.left;
  tile.rect[3] = item->rcItem.bottom - item->rcItem.top;
  ScopedBlock fill(TileFill(&tile));
  if (fill.handle)
    PaintPackedDib(item->hDC, item->rcItem.left, item->rcItem.top, fill.handle);
  else
    FillRect(item->hDC, &item->rcItem, GetSysColorBrush(COLOR_BTNFACE));
}

void Start(HWND dialog, MatrixRun* run) {
  SetWindowLongPtrA(dialog, DWLP_USER, reinterpret_cast<LONG_PTR>(run));
  HWND list = GetDlgItem(dialog, IDC_MATRIX_TILES);
  SendMessageA(list, LB_SETCOLUMNWIDTH, kCellSide, 0);
  FillGroupCombo(dialog);
  FillTileList(dialog, run);
  const uint32_t index = run->state.tile.index;
  if (index < run->state.list.tiles.size()) {
    SendMessageA(list, LB_SETCURSEL, index, 0);
    ShowTileSize(dialog, run->state.list.tiles[index]);
  }
  CentreWindow(AsHandle(dialog));
}

void Command(HWND dialog, MatrixRun* run, int id, int notification) {
  switch (id) {
    case IDC_MATRIX_TILES:
      if (notification == LBN_SELCHANGE)
        Pick(dialog, run,
             static_cast<int32_t>(SendDlgItemMessageA(dialog, id, LB_GETCURSEL, 0, 0)));
      else if (notification == LBN_DBLCLK)
        Finish(dialog, run, 1);
      break;
    case IDC_MATRIX_GROUP:
      if (notification == CBN_SELCHANGE) ChooseGroup(dialog, run);
      break;
    case IDC_MATRIX_ADD:
      if (ShiftHeld())
        SaveGroupUnderNewName(dialog, run);
      else if (NeedsWriteable(dialog, run))
        AddTileFromHost(dialog, run);
      break;
    case IDC_MATRIX_DELETE:
      if (ShiftHeld())
        DeleteGroup(dialog, run);
      else if (NeedsWriteable(dialog, run))
        DeleteSelectedTile(dialog, run);
      break;
    case IDOK:
      Finish(dialog, run, 1);
      break;
    case IDCANCEL:
      Finish(dialog, run, 0);
      break;
  }
}

INT_PTR CALLBACK MatrixProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_INITDIALOG) {
    Start(dialog, reinterpret_cast<MatrixRun*>(lParam));
    return TRUE;
  }
  if (message == WM_MEASUREITEM) {
    // Asked while the list is made, before WM_INITDIALOG: every cell is a square.
    MEASUREITEMSTRUCT* measure = reinterpret_cast<MEASUREITEMSTRUCT*>(lParam);
    measure->itemWidth = kCellSide;
    measure->itemHeight = kCellSide;
    return TRUE;
  }
  MatrixRun* run = RunOf(dialog);
  if (!run) return FALSE;
  switch (message) {
    case WM_DRAWITEM: {
      const DRAWITEMSTRUCT* item = reinterpret_cast<const DRAWITEMSTRUCT*>(lParam);
      if (item->CtlID == IDC_MATRIX_TILES)
        DrawCell(item, run);
      else if (item->CtlID == IDC_MATRIX_PREVIEW)
        DrawPreview(item, run);
      return TRUE;
    }
    case WM_CONTEXTMENU:
      if (reinterpret_cast<HWND>(wParam) == GetDlgItem(dialog, IDC_MATRIX_TILES))
        ShowCellMenu(dialog, run, reinterpret_cast<HWND>(wParam), lParam);
      return TRUE;
    case WM_COMMAND:
      Command(dialog, run, LOWORD(wParam), HIWORD(wParam));
      return TRUE;
  }
  return FALSE;
}

}  // namespace

int RunMatrixDialog(WindowHandle owner, TileRef* tile) {
  MatrixRun run;
  run.target = tile;
  int groupRead = 1;
  if (!BeginMatrixDialog(&run.state, tile, &groupRead)) {
    ShowMessage(owner, LoadMessage(kMessageMemoryError));
    return 0;
  }
  const INT_PTR result =
      DialogBoxParamA(CodeModule(), MAKEINTRESOURCEA(IDD_MATRIX), reinterpret_cast<HWND>(owner),
                      MatrixProc, reinterpret_cast<LPARAM>(&run));
  if (result == -1) EndMatrixDialog(&run.state, 0, tile);  // the dialog never opened
  return result == IDOK;
}
