// The ANMCTL window: its "Select..." button, its painting read back from a memory surface, its
// frame service, and the choice through the host with the parent told, cancels included.
#include <windows.h>

#include <string>

#include <gtest/gtest.h>

#include "controls/animation_picker.h"
#include "controls/page_setup.h"
#include "shell/host_interface.h"
#include "shell/packed_dib.h"

namespace {

constexpr int kWidth = 120, kHeight = 100;
constexpr int32_t kPickerId = 612;

// The parent's notes from the picker.
int g_told = 0;
WNDPROC g_dialogProc = nullptr;
LRESULT CALLBACK CountingDialogProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_COMMAND && LOWORD(wParam) == kPickerId) ++g_told;
  return CallWindowProcA(g_dialogProc, window, message, wParam, lParam);
}

// The host's answer to the next HostOpOpenAnimation, with the path it says the user chose.
MovableHandle g_answer = nullptr;
const char kChosen[] = "C:\\clips\\three frames.gif";
uint64_t Answer(void*, int32_t opcode, uint64_t, uint64_t b) {
  if (opcode != HostOpOpenAnimation || !g_answer) return 0;
  lstrcpynA(reinterpret_cast<AnimationRequest*>(b)->path, kChosen, 261);
  MovableHandle answer = g_answer;
  g_answer = nullptr;
  return reinterpret_cast<uint64_t>(answer);
}

// The client area as painted, held in a memory surface.
struct Painted {
  HDC dc;
  HBITMAP bitmap;
  HGDIOBJ old;
  explicit Painted(HWND picker) {
    HDC screen = GetDC(nullptr);
    dc = CreateCompatibleDC(screen);
    bitmap = CreateCompatibleBitmap(screen, kWidth, kHeight);
    ReleaseDC(nullptr, screen);
    old = SelectObject(dc, bitmap);
    SendMessageA(picker, WM_PRINTCLIENT, reinterpret_cast<WPARAM>(dc), PRF_CLIENT);
  }
  ~Painted() {
    SelectObject(dc, old);
    DeleteObject(bitmap);
    DeleteDC(dc);
  }
  COLORREF At(int x, int y) const { return GetPixel(dc, x, y); }
};

// Frame 0 from the frame service, expected centred in the picture area (1, 1)-(119, 56), and the
// area around it in the face colour.
void ExpectFirstFrameCentred(HWND picker) {
  int32_t delay = 0;
  ScopedBlock frame(reinterpret_cast<MovableHandle>(
      SendMessageA(picker, 1225, 0, reinterpret_cast<LPARAM>(&delay))));
  ScopedLock pixels(frame.handle);
  ASSERT_TRUE(pixels);
  const BitmapInfoHeader* h = reinterpret_cast<const BitmapInfoHeader*>(pixels.bytes);
  const int left = 1 + (118 - h->biWidth) / 2, top = 1 + (55 - h->biHeight) / 2;
  const Painted painted(picker);
  for (int32_t y = 0; y < h->biHeight; ++y)
    for (int32_t x = 0; x < h->biWidth; ++x)
      ASSERT_EQ(painted.At(left + x, top + y), ReadDibPixel(pixels.bytes, x, y)) << x << "," << y;
  EXPECT_EQ(painted.At(left - 1, top), GetSysColor(COLOR_BTNFACE));
  EXPECT_EQ(painted.At(left, top + h->biHeight), GetSysColor(COLOR_BTNFACE));
}

// Pixels of the path strip's field, inside its frame, that are not the field's colour: the path.
int PathInk(HWND picker) {
  const Painted painted(picker);
  int ink = 0;
  for (int y = 58; y < 75; ++y)
    for (int x = 2; x < kWidth - 2; ++x) ink += painted.At(x, y) != GetSysColor(COLOR_3DHIGHLIGHT);
  return ink;
}

}  // namespace

TEST(AnimationPickerWindow, ButtonPaintingFramesAndTheChoiceThroughTheHost) {
  InstallControlKinds();
  const long live = MovableLiveCount();
  HWND dialog = reinterpret_cast<HWND>(DialogCreate());
  ASSERT_TRUE(dialog);
  g_dialogProc = reinterpret_cast<WNDPROC>(
      SetWindowLongPtrA(dialog, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(CountingDialogProc)));
  g_told = 0;
  HWND picker = CreateWindowExA(0, "ANMCTL", "", WS_CHILD | WS_VISIBLE, 0, 0, kWidth, kHeight,
                                dialog, reinterpret_cast<HMENU>(static_cast<intptr_t>(kPickerId)),
                                GetModuleHandleA(nullptr), nullptr);
  ASSERT_TRUE(picker);
  EXPECT_EQ(DialogControlKind(reinterpret_cast<WindowHandle>(picker)), kControlAnimationPicker);

  // The button: "Select...", 23 high along the bottom of the client area less 1 all round.
  HWND button = GetDlgItem(picker, 1);
  ASSERT_TRUE(button);
  char caption[32] = "";
  GetWindowTextA(button, caption, sizeof caption);
  EXPECT_STREQ(caption, "Select...");
  RECT box;
  GetWindowRect(button, &box);
  MapWindowPoints(nullptr, picker, reinterpret_cast<POINT*>(&box), 2);
  EXPECT_EQ(box.left, 1);
  EXPECT_EQ(box.right, kWidth - 1);
  EXPECT_EQ(box.bottom, kHeight - 1);
  EXPECT_EQ(box.bottom - box.top, 23);

  // Bound to an empty path: the built-in clip, its first frame centred, an empty path strip in
  // its frame.
  char path[261] = "";
  ASSERT_EQ(SendMessageA(picker, 1224, 0, 0), 1);
  ASSERT_EQ(SendMessageA(picker, 1224, 1, reinterpret_cast<LPARAM>(path)), 1);
  int32_t count = 0;
  EXPECT_EQ(SendMessageA(picker, 1225, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(&count)),
            1);
  EXPECT_EQ(count, 12);
  ExpectFirstFrameCentred(picker);
  EXPECT_EQ(Painted(picker).At(10, 56), GetSysColor(COLOR_BTNSHADOW)) << "the strip's frame";
  EXPECT_EQ(PathInk(picker), 0);

  // The user picks a file through the host: its block and path are kept, the path shown, the
  // parent told.
  HostRecord host{};
  host.service = Answer;
  HostRecord* saved = CurrentHost;
  CurrentHost = &host;
  {
    ScopedBlock strip(CreatePackedDib(8, 24, nullptr, 24));
    ScopedLock s(strip.handle);
    ASSERT_TRUE(s);
    for (int32_t y = 0; y < 24; ++y)
      for (int32_t x = 0; x < 8; ++x) WriteDibPixel(s.bytes, x, y, 0x2080C0u + 0x10 * (y / 8));
    g_answer = MakeClipBlock(strip.handle, 0, 1);
  }
  SendMessageA(button, BM_CLICK, 0, 0);
  EXPECT_STREQ(path, kChosen);
  EXPECT_EQ(g_told, 1);
  SendMessageA(picker, 1225, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(&count));
  EXPECT_EQ(count, 3);
  ExpectFirstFrameCentred(picker);
  EXPECT_GT(PathInk(picker), 20);

  // A cancel empties the path and keeps the picture; the parent is told all the same.
  SendMessageA(button, BM_CLICK, 0, 0);
  EXPECT_STREQ(path, "");
  EXPECT_EQ(g_told, 2);
  SendMessageA(picker, 1225, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(&count));
  EXPECT_EQ(count, 3);
  EXPECT_EQ(PathInk(picker), 0);
  CurrentHost = saved;

  DestroyWindow(dialog);
  EXPECT_EQ(MovableLiveCount(), live) << "the block and the state go with the window";
}
