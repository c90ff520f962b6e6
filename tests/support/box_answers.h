// Answers the message boxes a test provokes. On Windows a box is modal and waits for its user:
// while an AnsweredBoxes lives, a timer of the thread presses OK in every box the thread shows.
// Headless boxes return at once, so elsewhere it does nothing.
#pragma once

#ifdef _WIN32
#include <windows.h>

class AnsweredBoxes {
 public:
  AnsweredBoxes() : timer_(SetTimer(nullptr, 0, 20, Press)) {}
  ~AnsweredBoxes() {
    if (timer_) KillTimer(nullptr, timer_);
  }
  AnsweredBoxes(const AnsweredBoxes&) = delete;
  AnsweredBoxes& operator=(const AnsweredBoxes&) = delete;

 private:
  static BOOL CALLBACK PressOk(HWND window, LPARAM) {
    char name[16] = "";
    GetClassNameA(window, name, sizeof name);
    if (lstrcmpA(name, "#32770") == 0 && IsWindowVisible(window))
      PostMessageA(window, WM_COMMAND, IDOK, 0);
    return TRUE;
  }
  static void CALLBACK Press(HWND, UINT, UINT_PTR, DWORD) {
    EnumThreadWindows(GetCurrentThreadId(), PressOk, 0);
  }
  UINT_PTR timer_;
};
#else
class AnsweredBoxes {};
#endif
