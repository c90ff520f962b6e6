// PaintPackedDib onto a render surface's DC, read back through the surface's write-back.
#include <windows.h>

#include <gtest/gtest.h>

#include "platform/surface.h"
#include "shell/packed_dib.h"
#include "shell/paint_dib_win32.h"

namespace {

// Paints `image` at (x, y) on a black 16 by 16 surface and returns what the surface holds.
MovableHandle PaintedAt(MovableHandle image, int x, int y, bool inset) {
  RenderSurface surface;
  if (!CreateRenderSurface(16, 16, &surface)) return nullptr;
  if (inset)
    PaintPackedDibInset(static_cast<HDC>(surface.memoryDc), image);
  else
    PaintPackedDib(static_cast<HDC>(surface.memoryDc), x, y, image);
  ReleaseRenderSurface(&surface, kSurfaceKeepImage);
  return surface.handle;
}

}  // namespace

TEST(PaintPackedDib, TrueColourAndPaletteImagesLandAtTheirPlace) {
  ScopedBlock colour(CreatePackedDib(3, 2, nullptr, 24));
  {
    ScopedLock lock(colour.handle);
    WriteDibPixel(lock.bytes, 0, 0, 0x0000FF);
    WriteDibPixel(lock.bytes, 2, 1, 0xFF0000);
  }
  uint8_t palette[768] = {};
  palette[3 * 1 + 1] = 0xFF;  // entry 1 green
  ScopedBlock indexed(CreatePackedDib(3, 2, palette, 8));
  {
    ScopedLock lock(indexed.handle);
    WriteDibPixel(lock.bytes, 1, 0, 1);
  }

  ScopedBlock a(PaintedAt(colour.handle, 5, 7, false));
  ScopedBlock b(PaintedAt(indexed.handle, 0, 0, true));
  ScopedBlock c(PaintedAt(nullptr, 0, 0, false));
  ScopedLock la(a.handle), lb(b.handle), lc(c.handle);
  ASSERT_TRUE(la && lb && lc);
  EXPECT_EQ(ReadDibPixel(la.bytes, 5, 7), 0x0000FFu);
  EXPECT_EQ(ReadDibPixel(la.bytes, 7, 8), 0xFF0000u);
  EXPECT_EQ(ReadDibPixel(la.bytes, 4, 7), 0u);
  EXPECT_EQ(ReadDibPixel(lb.bytes, 3, 2), 0x00FF00u);  // inset by (2, 2)
  EXPECT_EQ(ReadDibPixel(lb.bytes, 2, 2), 0u);
  for (int32_t y = 0; y < 16; ++y)
    for (int32_t x = 0; x < 16; ++x) ASSERT_EQ(ReadDibPixel(lc.bytes, x, y), 0u);
}
