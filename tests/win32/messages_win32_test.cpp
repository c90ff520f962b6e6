// The boxes as real dialogs: a watcher thread finds the box on the test's thread, reads its text
// and position, and answers it; without a display the boxes cannot open and the cases are skipped.
#include <windows.h>

#include <atomic>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "resources/resource_ids.h"
#include "shell/messages.h"

namespace {

bool DisplayAvailable() {
  HWND probe =
      CreateWindowA("STATIC", "", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
  if (!probe) return false;
  DestroyWindow(probe);
  return true;
}

struct SeenBox {
  std::string text;
  RECT rect{};
};

BOOL CALLBACK FindDialog(HWND window, LPARAM found) {
  char className[16];
  if (IsWindowVisible(window) && GetClassNameA(window, className, sizeof className) &&
      std::string(className) == "#32770") {
    *reinterpret_cast<HWND*>(found) = window;
    return FALSE;
  }
  return TRUE;
}

// Waits up to ten seconds for a box on `thread`, records it, and clicks `answer` in it.
void AnswerBox(DWORD thread, int answer, SeenBox* seen) {
  for (int tries = 0; tries < 1000; ++tries) {
    HWND box = nullptr;
    EnumThreadWindows(thread, FindDialog, reinterpret_cast<LPARAM>(&box));
    if (box) {
      char text[1024] = "";
      GetDlgItemTextA(box, IDC_MESSAGE_TEXT, text, sizeof text);
      seen->text = text;
      GetWindowRect(box, &seen->rect);
      PostMessageA(box, WM_COMMAND, MAKEWPARAM(answer, BN_CLICKED),
                   reinterpret_cast<LPARAM>(GetDlgItem(box, answer)));
      return;
    }
    Sleep(10);
  }
}

}  // namespace

TEST(MessageBoxes, ShowTheTextCentredAndEndOnTheAnswer) {
  if (!DisplayAvailable()) GTEST_SKIP() << "no display";
  DWORD self = GetCurrentThreadId();

  SeenBox seen;
  std::thread watcher(AnswerBox, self, kAnswerOk, &seen);
  EXPECT_EQ(ShowMessage(nullptr, LoadMessage(kMessageMemoryError)), kAnswerOk);
  watcher.join();
  EXPECT_EQ(seen.text, "Memory error");
  EXPECT_STREQ(LastShownMessage(), "Memory error");
  int width = seen.rect.right - seen.rect.left, height = seen.rect.bottom - seen.rect.top;
  EXPECT_EQ(seen.rect.left, (GetSystemMetrics(SM_CXSCREEN) - width) / 2);
  EXPECT_EQ(seen.rect.top, (GetSystemMetrics(SM_CYSCREEN) - height) / 2);

  for (int answer : {kAnswerYes, kAnswerNo, kAnswerCancel}) {
    SeenBox asked;
    std::thread yesno(AnswerBox, self, answer, &asked);
    EXPECT_EQ(AskYesNo(nullptr, "Replace the file?"), answer);
    yesno.join();
    EXPECT_EQ(asked.text, "Replace the file?");
  }
}

TEST(MessageBoxes, CentreWindowKeepsTheSize) {
  if (!DisplayAvailable()) GTEST_SKIP() << "no display";
  HWND window =
      CreateWindowA("STATIC", "", WS_POPUP, 3, 5, 301, 157, nullptr, nullptr, nullptr, nullptr);
  ASSERT_NE(window, nullptr);
  CentreWindow(reinterpret_cast<WindowHandle>(window));
  RECT rect;
  GetWindowRect(window, &rect);
  EXPECT_EQ(rect.right - rect.left, 301);
  EXPECT_EQ(rect.bottom - rect.top, 157);
  EXPECT_EQ(rect.left, (GetSystemMetrics(SM_CXSCREEN) - 301) / 2);
  EXPECT_EQ(rect.top, (GetSystemMetrics(SM_CYSCREEN) - 157) / 2);
  DestroyWindow(window);
}
