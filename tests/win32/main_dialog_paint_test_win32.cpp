// The main dialog's own items painted onto a memory surface: the colours of the size label and of
// a sample that has no picture.
#include <windows.h>

#include <gtest/gtest.h>

#include "platform/surface.h"
#include "shell/main_dialog_paint_win32.h"

namespace {

COLORREF Pixel(const RenderSurface& surface, int x, int y) {
  return GetPixel(static_cast<HDC>(surface.memoryDc), x, y);
}

}  // namespace

// The size label fills with system colour 14 and frames with 16; a sample whose row makes no
// picture (a window without a text gives none) fills with system colour 23 inside the same frame.
TEST(MainDialogPaint, SizeLabelAndEmptySampleColours) {
  HWND owner = CreateWindowExA(0, "STATIC", "", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr,
                               GetModuleHandleA(nullptr), nullptr);
  if (!owner) GTEST_SKIP() << "no window station";
  RenderSurface surface;
  ASSERT_TRUE(CreateRenderSurface(40, 30, &surface));
  DRAWITEMSTRUCT item = {};
  item.CtlType = ODT_STATIC;
  item.hDC = static_cast<HDC>(surface.memoryDc);
  item.rcItem = {0, 0, 40, 30};
  item.hwndItem = owner;
  PaintSizeLabel(&item);
  EXPECT_EQ(Pixel(surface, 20, 2), GetSysColor(14));
  EXPECT_EQ(Pixel(surface, 0, 0), GetSysColor(COLOR_BTNSHADOW));
  PaintSample(owner, &item);
  EXPECT_EQ(Pixel(surface, 20, 15), GetSysColor(23));
  EXPECT_EQ(Pixel(surface, 39, 29), GetSysColor(COLOR_BTNSHADOW));
  ReleaseRenderSurface(&surface, 0);
  DestroyWindow(owner);
}
