#include "text/image_copy.h"

#include <cstring>
#include <vector>

#include <gtest/gtest.h>

#include "shell/packed_dib.h"
#include "tests/support/alloc_sweep.h"
#include "tests/support/test_images.h"

TEST(CopyImageRect, MatchesPixelByPixelCopiesWithClipping) {
  struct Case {
    int tx, ty, sx, sy, w, h, targetDepth, sourceDepth;
  } cases[] = {{0, 0, 0, 0, 9, 7, 24, 24},  {-3, 2, 4, -1, 20, 20, 24, 24},
               {5, 5, 0, 0, 3, 3, 8, 8},    {1, 0, 2, 3, 6, 6, 32, 32},
               {2, 1, 0, 0, 5, 5, 24, 8},   {0, 0, 0, 0, 4, 0, 24, 24},
               {-9, 0, 0, 0, 4, 4, 24, 24}, {3, 3, -2, -2, 6, 6, 4, 4}};
  uint32_t seed = 11;
  for (const Case& c : cases) {
    MovableHandle source = RandomImage(9, 7, c.sourceDepth, seed++);
    MovableHandle target = RandomImage(8, 9, c.targetDepth, seed++);
    MovableHandle expected = CopyMovableBlock(target);
    {
      ScopedLock s(source), e(expected);
      for (int y = 0; y < c.h; ++y)
        for (int x = 0; x < c.w; ++x) {
          const int sx = c.sx + x, sy = c.sy + y, tx = c.tx + x, ty = c.ty + y;
          if (sx < 0 || sy < 0 || sx >= 9 || sy >= 7 || tx < 0 || ty < 0 || tx >= 8 || ty >= 9)
            continue;
          WriteDibPixel(e.bytes, tx, ty, ReadDibPixel(s.bytes, sx, sy));
        }
    }
    EXPECT_EQ(CopyImageRect(target, c.tx, c.ty, source, c.sx, c.sy, c.w, c.h), 1);
    EXPECT_TRUE(SameBlocks(target, expected)) << c.tx << "," << c.ty << " " << c.sourceDepth;
    for (MovableHandle h : {source, target, expected}) MovableFree(h);
  }
}

TEST(Rolls, WrapAroundAndKeepThePictureAtTheLimits) {
  ScopedBlock owner(RandomImage(5, 4, 24, 21));
  MovableHandle image = owner.handle;
  const PictureValues in = ReadPicture(image);
  // Where pixel (x, y) lands: moved by distance times (dx, dy), wrapped.
  const struct {
    MovableHandle (*roll)(MovableHandle, int32_t);
    int dx, dy;
    std::vector<int> distances;
  } rolls[] = {{RollDown, 0, 1, {0, 1, 3, 4}},
               {RollUp, 0, -1, {0, 1, 3, 4}},
               {RollRight, 1, 0, {0, 2, 5}},
               {RollLeft, -1, 0, {0, 2, 5}}};
  for (const auto& r : rolls)
    for (int d : r.distances) {
      const PictureValues out = TakePicture(r.roll(image, d));
      ASSERT_EQ(out.values.size(), in.values.size());
      for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 5; ++x)
          ASSERT_EQ(out.At((x + r.dx * d + 5) % 5, (y + r.dy * d + 4) % 4), in.At(x, y))
              << r.dx << "," << r.dy << " by " << d;
    }
  EXPECT_TRUE(SweepAllocationFailures([&] {
    MovableHandle rolled = RollLeft(image, 2);
    MovableFree(rolled);
    return rolled != nullptr;
  }));
}

TEST(FillImageRect, FillsFromTheCornerAndDropsWhatFallsOutside) {
  ScopedBlock image(CreatePackedDib(4, 3, nullptr, 24));
  EXPECT_EQ(FillImageRect(image.handle, 2, 9, 0x00ABCDEF), 1);
  ScopedLock lock(image.handle);
  EXPECT_EQ(ReadDibPixel(lock.bytes, 1, 2), 0x00ABCDEFu);
  EXPECT_EQ(ReadDibPixel(lock.bytes, 2, 0), 0u);
}

TEST(CropImage, KeepsDepthAndTableAndZeroesWhatLiesOutside) {
  const struct {
    int depth, left, top, width, height;
  } cases[] = {{24, 2, 1, 4, 3}, {8, 0, 0, 7, 5}, {32, 5, 3, 4, 4}, {24, -1, 0, 3, 1}};
  for (const auto& c : cases) {
    ScopedBlock source(RandomImage(7, 5, c.depth, 31));
    const PictureValues in = ReadPicture(source.handle);
    ScopedBlock crop(CropImage(source.handle, c.left, c.top, c.width, c.height));
    const PictureValues out = ReadPicture(crop.handle);
    ASSERT_EQ(out.width, c.width);
    ASSERT_EQ(out.height, c.height);
    EXPECT_EQ(out.bits, c.depth);
    for (int y = 0; y < c.height; ++y)
      for (int x = 0; x < c.width; ++x) {
        const int sx = c.left + x, sy = c.top + y;
        const bool inside = sx >= 0 && sy >= 0 && sx < 7 && sy < 5;
        EXPECT_EQ(out.At(x, y), inside ? in.At(sx, sy) : 0u) << c.depth << " " << x << "," << y;
      }
    ScopedLock a(source.handle), b(crop.handle);
    EXPECT_EQ(std::memcmp(DibTable(a.bytes), DibTable(b.bytes), DibTableBytes(c.depth)), 0);
  }
  ScopedBlock source(RandomImage(7, 5, 24, 32));
  EXPECT_TRUE(SweepAllocationFailures([&] {
    MovableHandle crop = CropImage(source.handle, 1, 1, 3, 3);
    MovableFree(crop);
    return crop != nullptr;
  }));
}
