#include "effects/band_shift.h"

#include <gtest/gtest.h>

#include "shell/packed_dib.h"
#include "tests/support/effect_frames.h"

// Against a per-pixel reference: inside the band pixel (d) comes from (d - distance) mod length;
// outside it the frame keeps what it held. Distances beyond a turn and negative ones wrap.
TEST(BandShift, ShiftsOneBandCyclicallyAndLeavesTheRest) {
  const struct { int depth; bool columns; int start, size, distance; } cases[] = {
      {24, false, 2, 3, 4},  {24, false, 0, 9, -3}, {32, true, 1, 2, 23},
      {32, true, 6, 1, -8},  {24, true, 0, 11, 0},  {24, false, 8, 1, 11 * 5 + 1},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.distance);
    ScopedBlock picture(RandomImage(11, 9, c.depth, 3));
    ScopedBlock frame(RandomImage(11, 9, c.depth, 4));
    const PictureValues home = ReadPicture(picture.handle), before = ReadPicture(frame.handle);
    int32_t w = 0, h = 0;
    ASSERT_EQ(PictureSize(picture.handle, &w, &h), 1);
    EXPECT_EQ(w * 100 + h, 1109);
    EXPECT_EQ(ShiftBand(frame.handle, picture.handle, c.columns, c.start, c.size, c.distance), 1);
    const PictureValues out = ReadPicture(frame.handle);
    const int length = c.columns ? 9 : 11;
    for (int y = 0; y < 9; ++y)
      for (int x = 0; x < 11; ++x) {
        const int across = c.columns ? x : y, along = c.columns ? y : x;
        const int from = ((along - c.distance) % length + length) % length;
        const bool inside = across >= c.start && across < c.start + c.size;
        const uint32_t expected =
            !inside ? before.At(x, y) : c.columns ? home.At(x, from) : home.At(from, y);
        ASSERT_EQ(out.At(x, y), expected) << x << "," << y;
      }
  }
}
