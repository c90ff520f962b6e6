#include "effects/glossy_ball.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "shell/packed_dib.h"
#include "tests/support/alloc_sweep.h"

namespace {

uint32_t Alpha(const void* ball, int32_t x, int32_t y) {
  return ReadDibPixel(ball, x, y) >> 24;
}

uint32_t Sum(uint32_t colour) {
  return (colour & 0xFF) + ((colour >> 8) & 0xFF) + ((colour >> 16) & 0xFF);
}

}  // namespace

TEST(GlossyBall, ADiscShadedFromRimToABodyThatSitsHigh) {
  for (int32_t scale : {2, 4}) {
    SCOPED_TRACE(scale);
    const BallPaint plain = {0x2040C0, 0x2040C0, 0x2040C0, 0};
    ScopedBlock flat(DrawGlossyBall(11, 11, scale, &plain));
    ScopedLock f(flat.handle);
    ASSERT_TRUE(f);
    const BitmapInfoHeader* h = reinterpret_cast<const BitmapInfoHeader*>(f.bytes);
    ASSERT_EQ(h->biBitCount, 32);
    ASSERT_EQ(h->biWidth * 100 + h->biHeight, 1111) << "reduced to the cell";
    // One colour everywhere gives that colour everywhere; the disc is in the alpha alone.
    for (int32_t y = 0; y < 11; ++y)
      for (int32_t x = 0; x < 11; ++x)
        ASSERT_EQ(ReadDibPixel(f.bytes, x, y) & 0xFFFFFF, 0x2040C0u) << x << "," << y;
    EXPECT_EQ(Alpha(f.bytes, 5, 5), 255u);
    EXPECT_LE(Alpha(f.bytes, 0, 0), 8u) << "outside the disc but for the reduction's blur";
    EXPECT_LE(Alpha(f.bytes, 10, 10), 8u);

    // Dark rim, lighter body: brighter inward, and the bright part above the middle. The body is
    // mid-grey so that the glint below has room to add light; the innermost rings, whose boxes
    // turn inside out, carry the body colour itself into the upper middle.
    const BallPaint shaded = {0x909090, 0x101010, 0x000000, 0};
    ScopedBlock ball(DrawGlossyBall(16, 16, scale, &shaded));
    ScopedLock b(ball.handle);
    ASSERT_TRUE(b);
    EXPECT_GT(Sum(ReadDibPixel(b.bytes, 8, 7)), Sum(ReadDibPixel(b.bytes, 2, 8)));
    EXPECT_GT(Sum(ReadDibPixel(b.bytes, 8, 4)), Sum(ReadDibPixel(b.bytes, 8, 12)));

    // A glint adds light in the upper middle, inside its square (a third of the cell from the left,
    // a sixth from the top, two fifths wide) and takes none away, but for the reduction filter's
    // ringing of a few levels beside the glint's edge. Outside the square nothing moves.
    BallPaint glinting = shaded;
    glinting.glare = 200;
    ScopedBlock lit(DrawGlossyBall(16, 16, scale, &glinting));
    ScopedLock l(lit.handle);
    ASSERT_TRUE(l);
    int brighter = 0;
    for (int32_t y = 0; y < 16; ++y)
      for (int32_t x = 0; x < 16; ++x) {
        const uint32_t before = ReadDibPixel(b.bytes, x, y), after = ReadDibPixel(l.bytes, x, y);
        const int32_t change = static_cast<int32_t>(after & 0xFF) - static_cast<int32_t>(before & 0xFF);
        ASSERT_GE(change, -4) << x << "," << y;
        const bool inSquare = x >= 4 && x < 13 && y >= 1 && y < 10;
        if (!inSquare) ASSERT_LE(std::abs(change), 2) << x << "," << y;
        brighter += change > 20;
      }
    EXPECT_GT(brighter, 4);
  }
  EXPECT_TRUE(SweepAllocationFailures([] {
    const BallPaint paint = {0x00FF00, 0x004000, 0xFFFFFF, 90};
    MovableHandle ball = DrawGlossyBall(6, 6, 2, &paint);
    MovableFree(ball);
    return ball != nullptr;
  }));
}

TEST(GlossyBall, StampBlendsByAlphaFadedToTheLevelAndWraps) {
  ScopedBlock ball(CreatePackedDib32(2, 1));
  ScopedBlock target(CreatePackedDib(3, 2, nullptr, 24));
  ScopedLock b(ball.handle), t(target.handle);
  ASSERT_TRUE(b && t);
  WriteDibPixel(b.bytes, 0, 0, 0xFF0000FFu);  // red, opaque
  WriteDibPixel(b.bytes, 1, 0, 0x800000FFu);  // red, half
  struct Case {
    int32_t level;
    uint32_t first, second;  // the target pixels at (2, 1) and (0, 1), white before
  } cases[] = {
      {255, 0x0000FF, 0x7F7FFF},  // (255 * 128) / 255 + (255 * 127) / 255
      {0, 0xFFFFFF, 0xFFFFFF},    // faded out: nothing changes
      {300, 0x0000FF, 0x6969FF},  // above 255 the faded alpha grows (150), clamped at 255
      {-40, 0xFFFFFF, 0xFFFFFF},  // below 0 clamps to 0
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.level);
    for (int32_t y = 0; y < 2; ++y)
      for (int32_t x = 0; x < 3; ++x) WriteDibPixel(t.bytes, x, y, 0xFFFFFF);
    ASSERT_EQ(StampBallWrapped(t.bytes, b.bytes, 2, -1, c.level), 1);
    EXPECT_EQ(ReadDibPixel(t.bytes, 2, 1), c.first);
    EXPECT_EQ(ReadDibPixel(t.bytes, 0, 1), c.second) << "wrapped to the left edge";
    EXPECT_EQ(ReadDibPixel(t.bytes, 1, 1), 0xFFFFFFu);
    EXPECT_EQ(ReadDibPixel(t.bytes, 2, 0), 0xFFFFFFu);
  }
  EXPECT_EQ(StampBallWrapped(b.bytes, t.bytes, 0, 0, 255), 0) << "a 24-bit ball has no alpha";
}
