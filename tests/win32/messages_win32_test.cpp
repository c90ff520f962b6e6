// The boxes as real dialogs: a watcher thread finds the box on the test's thread, reads its text
// and position, and answers it; without a display the boxes cannot open and the cases are skipped.
#include <windows.h>

#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "resources/resource_ids.h"
#include "shell/messages.h"
#include "tests/win32/win32_test_support.h"

namespace {

struct SeenBox {
  std::string text;
  RECT rect{};
};

// Waits up to ten seconds for a box on `thread`, records it, and clicks `answer` in it.
void AnswerBox(DWORD thread, int answer, SeenBox* seen) {
  for (int tries = 0; tries < 1000; ++tries, Sleep(10)) {
    HWND box = nullptr;
    EnumThreadWindows(
        thread,
        [](HWND window, LPARAM found) {
          char name[16] = "";
          GetClassNameA(window, name, sizeof name);
          if (!IsWindowVisible(window) || std::string(name) != "#32770") return TRUE;
          *reinterpret_cast<HWND*>(found) = window;
          return FALSE;
        },
        reinterpret_cast<LPARAM>(&box));
    if (!box) continue;
    char text[1024] = "";
    GetDlgItemTextA(box, IDC_MESSAGE_TEXT, text, sizeof text);
    seen->text = text;
    GetWindowRect(box, &seen->rect);
    PostMessageA(box, WM_COMMAND, MAKEWPARAM(answer, BN_CLICKED),
                 reinterpret_cast<LPARAM>(GetDlgItem(box, answer)));
    return;
  }
}

}  // namespace

// Boxes show their text centred on the screen and end on the answer clicked; CentreWindow keeps a
// window's size, odd or not.
TEST(MessageBoxes, ShowTheTextCentredAndEndOnTheAnswer) {
  if (!DisplayAvailable()) GTEST_SKIP() << "no display";
  const int screenWidth = GetSystemMetrics(SM_CXSCREEN),
            screenHeight = GetSystemMetrics(SM_CYSCREEN);
  auto expectCentred = [&](const RECT& r, int width, int height) {
    EXPECT_EQ(r.right - r.left, width);
    EXPECT_EQ(r.bottom - r.top, height);
    EXPECT_EQ(r.left, (screenWidth - width) / 2);
    EXPECT_EQ(r.top, (screenHeight - height) / 2);
  };
  const DWORD self = GetCurrentThreadId();
  SeenBox seen;
  std::thread watcher(AnswerBox, self, kAnswerOk, &seen);
  EXPECT_EQ(ShowMessage(nullptr, LoadMessage(kMessageMemoryError)), kAnswerOk);
  watcher.join();
  EXPECT_EQ(seen.text, "Memory error");
  EXPECT_STREQ(LastShownMessage(), "Memory error");
  expectCentred(seen.rect, seen.rect.right - seen.rect.left, seen.rect.bottom - seen.rect.top);
  for (int answer : {kAnswerYes, kAnswerNo, kAnswerCancel}) {
    SeenBox asked;
    std::thread yesno(AnswerBox, self, answer, &asked);
    EXPECT_EQ(AskYesNo(nullptr, "Replace the file?"), answer);
    yesno.join();
    EXPECT_EQ(asked.text, "Replace the file?");
  }

  HWND window =
      CreateWindowA("STATIC", "", WS_POPUP, 3, 5, 301, 157, nullptr, nullptr, nullptr, nullptr);
  ASSERT_NE(window, nullptr);
  CentreWindow(reinterpret_cast<WindowHandle>(window));
  RECT rect;
  GetWindowRect(window, &rect);
  expectCentred(rect, 301, 157);
  DestroyWindow(window);
}
