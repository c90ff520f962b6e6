#include "effects/cell_tiling.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "shell/packed_dib.h"

TEST(CellTiling, EveryPixelIsTheCellsPixelAtTheRemainders) {
  struct Case {
    int32_t depth, cellWidth, cellHeight, width, height;
  } cases[] = {
      {24, 7, 5, 30, 17},  // partial tiles at both far edges
      {32, 4, 4, 8, 12},   // whole tiles
      {24, 22, 22, 10, 9},  // canvas smaller than the cell: the cell's size stands
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.cellWidth * 100 + c.width);
    ScopedBlock cell(CreatePackedDib(c.cellWidth, c.cellHeight, nullptr, c.depth));
    {
      ScopedLock lock(cell.handle);
      ASSERT_TRUE(lock);
      for (int32_t y = 0; y < c.cellHeight; ++y)
        for (int32_t x = 0; x < c.cellWidth; ++x)
          WriteDibPixel(lock.bytes, x, y, (x * 37 + y * 101) * 0x010203u & 0xFFFFFF);
    }
    ScopedBlock tiled(TileCellOverCanvas(cell.handle, c.width, c.height));
    ScopedLock in(cell.handle), out(tiled.handle);
    ASSERT_TRUE(out);
    const BitmapInfoHeader* h = reinterpret_cast<const BitmapInfoHeader*>(out.bytes);
    EXPECT_EQ(h->biBitCount, c.depth);
    EXPECT_EQ(h->biWidth, std::max(c.width, c.cellWidth));
    EXPECT_EQ(h->biHeight, std::max(c.height, c.cellHeight));
    for (int32_t y = 0; y < h->biHeight; ++y)
      for (int32_t x = 0; x < h->biWidth; ++x)
        ASSERT_EQ(ReadDibPixel(out.bytes, x, y),
                  ReadDibPixel(in.bytes, x % c.cellWidth, y % c.cellHeight))
            << x << "," << y;
  }
  EXPECT_EQ(TileCellOverCanvas(nullptr, 4, 4), nullptr);
}
