// The script driver on Windows: finds the thread's active dialog or message box, sets values and
// presses buttons by posting the same WM_COMMAND notifications that a user's actions send.
#include <windows.h>

#include <cstdlib>
#include <sstream>

#include "host/dialog_driver.h"
#include "host/import_watch.h"
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
  HWND dialog = ActiveDialog(false);
  if (!dialog) return false;
  if (word == "wait-dialog") return true;
  HWND control = GetDlgItem(dialog, id);
  std::string prefix = word + " id=" + std::to_string(id);
  if (word == "click") {
    PostCommand(dialog, id, BN_CLICKED);
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
  } else if (word == "read-text") {
    char text[1024] = "";
    GetDlgItemTextA(dialog, id, text, sizeof text);
    Log(prefix + " text=" + EscapeLogText(text));
  } else if (word == "read-class") {
    char className[64] = "";
    if (control) GetClassNameA(control, className, sizeof className);
    Log(prefix + " class=" + EscapeLogText(className));
  } else if (word == "read-check") {
    Log(prefix + " check=" + std::to_string(IsDlgButtonChecked(dialog, id)));
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
