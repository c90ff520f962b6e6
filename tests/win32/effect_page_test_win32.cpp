// ShowEffectPage on real child windows: the dialog port enumerates HWNDs and shows or hides them.
#include <windows.h>

#include <gtest/gtest.h>

#include "platform/surface.h"
#include "shell/effect_table.h"

TEST(EffectPage, ShowsTheListedChildWindowsOnly) {
  HWND dialog = CreateWindowExA(0, "STATIC", "page host", WS_POPUP, 0, 0, 200, 200, nullptr,
                                nullptr, GetModuleHandleA(nullptr), nullptr);
  ASSERT_NE(dialog, nullptr) << "windows need a display: run under xvfb-run";
  const int32_t ids[] = {58, 100, 10100, 124, 134};
  for (int32_t id : ids)
    CreateWindowExA(0, "STATIC", "", WS_CHILD | WS_VISIBLE, 0, 0, 10, 10, dialog,
                    reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), GetModuleHandleA(nullptr),
                    nullptr);
  WindowHandle handle = reinterpret_cast<WindowHandle>(dialog);
  const int32_t page[] = {100, 10100, 0};
  ShowPageControls(handle, page);
  EXPECT_EQ(DialogItemVisible(DialogItem(handle, 58)), 1);
  EXPECT_EQ(DialogItemVisible(DialogItem(handle, 100)), 1);
  EXPECT_EQ(DialogItemVisible(DialogItem(handle, 10100)), 1);
  EXPECT_EQ(DialogItemVisible(DialogItem(handle, 124)), 0);
  EXPECT_EQ(DialogItemVisible(DialogItem(handle, 134)), 0);
  EXPECT_EQ(DialogItemId(DialogItem(handle, 124)), 124);
  ShowEffectPage(handle, 21);
  EXPECT_EQ(DialogItemVisible(DialogItem(handle, 100)), 0);
  EXPECT_EQ(DialogItemVisible(DialogItem(handle, 58)), 1);
  DestroyWindow(dialog);
}

// The process has room for about 65,000 GDI objects. Drawing more shapes than that on one surface
// fails as soon as a pen or brush per call is left behind.
TEST(RenderSurface, DrawingLeavesNoGdiObjectsBehind) {
  RenderSurface surface;
  ASSERT_EQ(CreateRenderSurface(32, 16, &surface), 1);
  const SurfacePaint paint = {0xFF, 0xFF00, 3};
  const SurfaceRect box = {2, 2, 20, 12};
  const SurfacePoint triangle[] = {{1, 1}, {30, 4}, {9, 15}};
  for (int i = 0; i < 70000; ++i) {
    ASSERT_EQ(SurfaceEllipse(&surface, &box, &paint), 1) << i;
    ASSERT_EQ(SurfacePolygon(&surface, triangle, 3, &paint, kFillWinding), 1) << i;
    ASSERT_EQ(SurfaceRectangle(&surface, &box, &paint), 1) << i;
    ASSERT_EQ(SurfaceLine(&surface, 0, 0, 31, 15, 0xFFFFFF, 2), 1) << i;
    ASSERT_EQ(SurfaceFillRect(&surface, &box, 0x808080), 1) << i;
  }
  ReleaseRenderSurface(&surface, 0);
}

TEST(RenderSurface, ReleaseDeletesTheBitmapAndTheMemoryDc) {
  RenderSurface surface;
  ASSERT_EQ(CreateRenderSurface(32, 16, &surface), 1);
  HGDIOBJ bitmap = static_cast<HGDIOBJ>(surface.bitmap);
  HGDIOBJ dc = static_cast<HGDIOBJ>(surface.memoryDc);
  EXPECT_EQ(GetObjectType(bitmap), static_cast<DWORD>(OBJ_BITMAP));
  EXPECT_EQ(GetObjectType(dc), static_cast<DWORD>(OBJ_MEMDC));
  ReleaseRenderSurface(&surface, 0);
  EXPECT_EQ(GetObjectType(bitmap), 0u);
  EXPECT_EQ(GetObjectType(dc), 0u);
}
