// The script driver on Windows: finds the thread's active dialog or message box, sets values and
// presses buttons by posting the same WM_COMMAND notifications that a user's actions send.
#include <windows.h>

#include <cstdlib>
#include <map>
#include <sstream>

#include "host/dialog_driver.h"
#include "host/bmp_file.h"
#include "host/import_watch.h"
#include "host/png_file.h"
#include "resources/resource_ids.h"

namespace {

constexpr UINT kTickMilliseconds = 20;
constexpr DWORD kDefaultStepTimeout = 20000;
constexpr DWORD kUpdateTimerWait = 400;  // longer than the dialog's update delay

struct DriverState {
  HostSession* session = nullptr;
  std::vector<std::string> steps;
  size_t next = 0;
  DWORD stepStarted = 0;
  UINT_PTR timer = 0;
  bool busy = false;
  bool abandoned = false;
  DWORD stepTimeout = kDefaultStepTimeout;
};
DriverState driver;

struct DialogSearch {
  bool wantBox;
  HWND found;
};

BOOL CALLBACK FindDialog(HWND window, LPARAM param) {
  DialogSearch* search = reinterpret_cast<DialogSearch*>(param);
  char className[16];
  if (!IsWindowVisible(window) || !IsWindowEnabled(window)) return TRUE;
  if (!GetClassNameA(window, className, sizeof className) || strcmp(className, "#32770"))
    return TRUE;
  bool isBox = GetDlgItem(window, IDC_MESSAGE_TEXT) != nullptr;
  if (isBox != search->wantBox) return TRUE;
  search->found = window;
  return FALSE;
}

// The enabled dialog (or message box) of this thread: the modal one at the top.
HWND ActiveDialog(bool box) {
  DialogSearch search{box, nullptr};
  EnumThreadWindows(GetCurrentThreadId(), FindDialog, reinterpret_cast<LPARAM>(&search));
  return search.found;
}

BOOL CALLBACK CancelWindow(HWND window, LPARAM) {
  char className[16];
  if (GetClassNameA(window, className, sizeof className) && !strcmp(className, "#32770"))
    PostMessageA(window, WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED), 0);
  return TRUE;
}

void Log(const std::string& text) {
  HostLog(driver.session, text);
}

// Paint counting: a watched control is subclassed and counts its WM_PAINT messages.
struct PaintWatch {
  WNDPROC base = nullptr;
  int paints = 0;
};
std::map<HWND, PaintWatch> paintWatches;

LRESULT CALLBACK CountingProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  auto found = paintWatches.find(window);
  if (found == paintWatches.end()) return DefWindowProcA(window, message, wParam, lParam);
  if (message == WM_PAINT) ++found->second.paints;
  WNDPROC base = found->second.base;
  if (message == WM_NCDESTROY) {
    SetWindowLongPtrA(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(base));
    paintWatches.erase(found);
  }
  return CallWindowProcA(base, window, message, wParam, lParam);
}

void WatchPaints(HWND control) {
  if (!control) return;
  auto found = paintWatches.find(control);
  if (found != paintWatches.end()) {
    found->second.paints = 0;
    return;
  }
  PaintWatch watch;
  watch.base = reinterpret_cast<WNDPROC>(
      SetWindowLongPtrA(control, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(CountingProc)));
  paintWatches[control] = watch;
}

// The window's picture as it stands on its surface, written as PNG (or BMP for a .bmp name).
bool SaveScreenshot(HWND window, const std::string& path) {
  RECT r;
  if (!GetWindowRect(window, &r)) return false;
  const int width = r.right - r.left, height = r.bottom - r.top;
  HDC windowDc = GetWindowDC(window);
  HDC memory = CreateCompatibleDC(windowDc);
  BITMAPINFO info{};
  info.bmiHeader.biSize = sizeof info.bmiHeader;
  info.bmiHeader.biWidth = width;
  info.bmiHeader.biHeight = -height;
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 32;
  void* bits = nullptr;
  HBITMAP bitmap = CreateDIBSection(windowDc, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  bool ok = false;
  if (memory && bitmap && bits) {
    HGDIOBJ old = SelectObject(memory, bitmap);
    ok = BitBlt(memory, 0, 0, width, height, windowDc, 0, 0, SRCCOPY) != 0;
    GdiFlush();
    SelectObject(memory, old);
  }
  if (ok) {
    const uint8_t* bgra = static_cast<const uint8_t*>(bits);
    std::vector<uint8_t> rgb(static_cast<size_t>(width) * height * 3);
    for (size_t i = 0; i < static_cast<size_t>(width) * height; ++i) {
      rgb[i * 3] = bgra[i * 4 + 2];
      rgb[i * 3 + 1] = bgra[i * 4 + 1];
      rgb[i * 3 + 2] = bgra[i * 4];
    }
    ok = WriteWholeFile(path.c_str(), EncodeRgbPng(rgb.data(), rgb.size(), width, height)) != 0;
  }
  if (bitmap) DeleteObject(bitmap);
  if (memory) DeleteDC(memory);
  ReleaseDC(window, windowDc);
  return ok;
}

// The common file dialog of this thread: a visible dialog with a file name field. Explorer-style
// dialogs hold the field as 1148 (a combo box with an edit, or an edit), older ones as 1152.
struct FileFieldSearch {
  HWND dialog = nullptr;
  HWND field = nullptr;
};

BOOL CALLBACK FindFileField(HWND window, LPARAM param) {
  FileFieldSearch* search = reinterpret_cast<FileFieldSearch*>(param);
  if (!IsWindowVisible(window)) return TRUE;
  HWND combo = GetDlgItem(window, 1148);
  HWND field = combo ? FindWindowExA(combo, nullptr, "Edit", nullptr) : nullptr;
  if (!field) field = combo ? combo : GetDlgItem(window, 1152);
  if (!field) return TRUE;
  search->dialog = window;
  search->field = field;
  return FALSE;
}

HWND FindFileNameField(HWND* fileDialog) {
  FileFieldSearch search;
  EnumThreadWindows(GetCurrentThreadId(), FindFileField, reinterpret_cast<LPARAM>(&search));
  *fileDialog = search.dialog;
  return search.field;
}

void PostCommand(HWND dialog, int id, int notification) {
  PostMessageA(dialog, WM_COMMAND, MAKEWPARAM(id, notification),
               reinterpret_cast<LPARAM>(GetDlgItem(dialog, id)));
}

// Runs one step; returns false while it waits for its window or its time.
bool RunStep(const std::string& step, DWORD waited) {
  std::istringstream in(step);
  std::string word;
  in >> word;
  int id = 0;
  in >> id;
  if (word == "sleep") return waited >= static_cast<DWORD>(id);
  if (word == "wait-timer") return waited >= kUpdateTimerWait;
  if (word == "timeout") {
    driver.stepTimeout = static_cast<DWORD>(id);
    return true;
  }
  if (word == "watch") {
    ImportWatchCounts counts = ImportWatchNow();
    Log("watch when=during gdiObjects=" + std::to_string(counts.liveGdiObjects) +
        " gdiplusStartups=" + std::to_string(counts.gdiplusStartups) +
        " gdiplusShutdowns=" + std::to_string(counts.gdiplusShutdowns));
    return true;
  }
  if (word == "box") {
    HWND box = ActiveDialog(true);
    if (!box) return false;
    char text[1024] = "";
    GetDlgItemTextA(box, IDC_MESSAGE_TEXT, text, sizeof text);
    Log("box text=" + EscapeLogText(text) + " answer=" + std::to_string(id));
    PostCommand(box, id, BN_CLICKED);
    return true;
  }
  if (word == "file-dialog") {
    // file-dialog PATH: types PATH into the open file dialog and presses its OK button.
    HWND fileDialog = nullptr;
    HWND field = FindFileNameField(&fileDialog);
    if (!field) return false;
    const size_t space = step.find(' ');
    const std::string path = space == std::string::npos ? "" : step.substr(space + 1);
    char title[128] = "";
    GetWindowTextA(fileDialog, title, sizeof title);
    RECT r{};
    GetWindowRect(fileDialog, &r);
    Log("file-dialog title=" + EscapeLogText(title) + " width=" + std::to_string(r.right - r.left) +
        " height=" + std::to_string(r.bottom - r.top));
    SetWindowTextA(field, path.c_str());
    PostMessageA(fileDialog, WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED),
                 reinterpret_cast<LPARAM>(GetDlgItem(fileDialog, IDOK)));
    return true;
  }
  HWND dialog = ActiveDialog(false);
  if (!dialog) return false;
  if (word == "wait-dialog") return true;
  if (word == "wait-caption") {
    const size_t space = step.find(' ');
    const std::string wanted = space == std::string::npos ? "" : step.substr(space + 1);
    char caption[256] = "";
    GetWindowTextA(dialog, caption, sizeof caption);
    return wanted == caption;
  }
  HWND control = GetDlgItem(dialog, id);
  std::string prefix = word + " id=" + std::to_string(id);
  if (word == "click") {
    PostCommand(dialog, id, BN_CLICKED);
  } else if (word == "click-child") {
    // click-child ID CHILD: a button inside control ID, such as the animation picker's Select.
    int child = 0;
    in >> child;
    PostMessageA(control, WM_COMMAND, MAKEWPARAM(child, BN_CLICKED),
                 reinterpret_cast<LPARAM>(control ? GetDlgItem(control, child) : nullptr));
  } else if (word == "set-text") {
    std::string text;
    std::getline(in >> std::ws, text);
    SetDlgItemTextA(dialog, id, text.c_str());  // the edit notifies its dialog itself
  } else if (word == "set-check") {
    int check = 0;
    in >> check;
    CheckDlgButton(dialog, id, check ? BST_CHECKED : BST_UNCHECKED);
    PostCommand(dialog, id, BN_CLICKED);
  } else if (word == "select") {
    int row = 0;
    in >> row;
    SendMessageA(control, CB_SETCURSEL, row, 0);
    PostCommand(dialog, id, CBN_SELCHANGE);
  } else if (word == "select-list") {
    int row = 0;
    in >> row;
    SendMessageA(control, LB_SETCURSEL, row, 0);
    PostCommand(dialog, id, LBN_SELCHANGE);
  } else if (word == "post-command") {
    int command = 0;
    in >> command;
    if (control) PostMessageA(control, WM_COMMAND, static_cast<WPARAM>(command), 0);
    Log(prefix + " command=" + std::to_string(command) + " found=" + (control ? "1" : "0"));
  } else if (word == "select-text") {
    std::string text;
    std::getline(in >> std::ws, text);
    const LRESULT row = SendMessageA(control, CB_SELECTSTRING, static_cast<WPARAM>(-1),
                                     reinterpret_cast<LPARAM>(text.c_str()));
    Log(prefix + " row=" + std::to_string(row));
    PostCommand(dialog, id, CBN_SELCHANGE);
  } else if (word == "read-text") {
    char text[1024] = "";
    GetDlgItemTextA(dialog, id, text, sizeof text);
    Log(prefix + " text=" + EscapeLogText(text));
  } else if (word == "read-class") {
    char className[64] = "";
    if (control) GetClassNameA(control, className, sizeof className);
    Log(prefix + " class=" + EscapeLogText(className));
  } else if (word == "read-style") {
    const LONG style = control ? GetWindowLongA(control, GWL_STYLE) & 0xF : -1;
    Log(prefix + " style=" + std::to_string(style));
  } else if (word == "read-check") {
    Log(prefix + " check=" + std::to_string(IsDlgButtonChecked(dialog, id)));
  } else if (word == "count-paints") {
    WatchPaints(control);
  } else if (word == "read-paints") {
    auto found = paintWatches.find(control);
    Log(prefix +
        " paints=" + std::to_string(found == paintWatches.end() ? -1 : found->second.paints));
  } else if (word == "screenshot") {
    // screenshot 0 PATH: the whole dialog.
    std::string path;
    std::getline(in >> std::ws, path);
    Log("screenshot path=" + EscapeLogText(path.c_str()) +
        " result=" + std::to_string(SaveScreenshot(dialog, path) ? 1 : 0));
  } else if (word == "read-enabled") {
    Log(prefix + " enabled=" + std::to_string(control && IsWindowEnabled(control) ? 1 : 0));
  } else {
    Log("step error=unknown-step text=" + EscapeLogText(step.c_str()));
  }
  return true;
}

void CALLBACK DriverTick(HWND, UINT, UINT_PTR, DWORD) {
  if (driver.busy || driver.abandoned || driver.next >= driver.steps.size()) return;
  driver.busy = true;
  DWORD waited = GetTickCount() - driver.stepStarted;
  const std::string& step = driver.steps[driver.next];
  if (RunStep(step, waited)) {
    Log("step n=" + std::to_string(driver.next + 1) + " text=" + EscapeLogText(step.c_str()));
    ++driver.next;
    driver.stepStarted = GetTickCount();
  } else if (waited > driver.stepTimeout) {
    Log("step n=" + std::to_string(driver.next + 1) +
        " error=timeout text=" + EscapeLogText(step.c_str()));
    driver.abandoned = true;
    EnumThreadWindows(GetCurrentThreadId(), CancelWindow, 0);
  }
  driver.busy = false;
}

}  // namespace

int StartDialogDriver(HostSession* session, const std::vector<std::string>& steps) {
  driver.session = session;
  driver.steps = steps;
  driver.next = 0;
  driver.abandoned = false;
  driver.stepTimeout = kDefaultStepTimeout;
  driver.stepStarted = GetTickCount();
  driver.timer = SetTimer(nullptr, 0, kTickMilliseconds, DriverTick);
  return driver.timer != 0;
}

int StopDialogDriver() {
  if (driver.timer) KillTimer(nullptr, driver.timer);
  driver.timer = 0;
  return static_cast<int>(driver.steps.size() - driver.next);
}
