#include "effects/item_shadow.h"

#include <gtest/gtest.h>

#include "shell/packed_dib.h"
#include "tests/support/frame_set_checks.h"
#include "text/blur.h"

namespace {

// A 24 or 8-bit picture of w by h whose pixel (x, y) is `value(x, y)`.
template <typename F>
MovableHandle Picture(int32_t w, int32_t h, int32_t bits, F value) {
  MovableHandle image = CreatePackedDib(w, h, nullptr, bits);
  ScopedLock lock(image);
  for (int32_t y = 0; lock && y < h; ++y)
    for (int32_t x = 0; x < w; ++x) WriteDibPixel(lock.bytes, x, y, value(x, y));
  return image;
}

}  // namespace

TEST(ItemShadow, PadFollowsTheSoftnessBands) {
  struct Case {
    int32_t offset, softness, pad;
  } cases[] = {{4, 0, 4},     {4, 1, 5},   {4, 9, 5},   {4, 10, 6},  {4, 20, 7},
               {4, 21, 9},    {4, 40, 13}, {4, 41, 46}, {0, 60, 61}, {0, 61, 306},
               {0, 120, 601}, {7, 30, 14}, {3, -1, -1}};
  for (const Case& c : cases)
    EXPECT_EQ(ItemShadowPad(c.offset, c.softness), c.pad) << c.offset << "/" << c.softness;
}

TEST(ItemShadow, SharpShadowsPlaceAndDimTheItemExactly) {
  // Softness 0 and strengths below 6 (softness up to 3) keep the picture sharp; 8-bit pictures are
  // never blurred and scale their indices.
  struct Case {
    int32_t bits, offset, softness, opacity;
  } cases[] = {{24, 3, 0, 255}, {24, 2, 3, 128}, {24, 0, 2, 200}, {8, 5, 30, 100}, {8, 0, 0, 255}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.bits * 10000 + c.offset * 1000 + c.softness);
    auto value = [&c](int32_t x, int32_t y) -> uint32_t {
      return c.bits == 8
                 ? static_cast<uint32_t>(40 + 10 * x + y)
                 : static_cast<uint32_t>(0x408010 + 0x010203 * static_cast<uint32_t>(x + 5 * y));
    };
    ScopedBlock source(Picture(5, 4, c.bits, value));
    if (c.bits == 8) {
      ScopedLock s(source.handle);
      DibTable(s.bytes)[4 * 7 + 1] = 99;  // a table entry that must be kept
    }
    ScopedBlock shadow(ItemShadowImage(source.handle, c.offset, c.softness, c.opacity));
    ScopedLock lock(shadow.handle);
    ASSERT_TRUE(lock);
    const BitmapInfoHeader* h = reinterpret_cast<const BitmapInfoHeader*>(lock.bytes);
    const int32_t pad = ItemShadowPad(c.offset, c.softness);
    ASSERT_EQ(h->biWidth, 5 + pad);
    ASSERT_EQ(h->biHeight, 4 + pad);
    ASSERT_EQ(h->biBitCount, c.bits);
    if (c.bits == 8) {
      EXPECT_EQ(DibTable(lock.bytes)[4 * 7 + 1], 99);
    }
    const int32_t at = c.offset ? c.offset : pad / 2;
    for (int32_t y = 0; y < h->biHeight; ++y)
      for (int32_t x = 0; x < h->biWidth; ++x) {
        const bool inside = x >= at && x < at + 5 && y >= at && y < at + 4;
        uint32_t expected = 0;
        if (inside) {
          const uint32_t v = value(x - at, y - at);
          for (int shift = 0; shift < (c.bits == 8 ? 8 : 24); shift += 8)
            expected |= ((v >> shift & 0xFF) * static_cast<uint32_t>(c.opacity) / 255) << shift;
        }
        ASSERT_EQ(ReadDibPixel(lock.bytes, x, y), expected) << x << "," << y;
      }
  }
}

TEST(ItemShadow, SoftShadowsAreTheBoxBlurOfTheSharpPicture) {
  // Softness 4 and above blurs with strength softness + 2. The sharp picture of the same margin is
  // made by hand: black, the item at the offset (centred for offset 0).
  struct Case {
    int32_t offset, softness;
  } cases[] = {{4, 4}, {4, 20}, {0, 45}, {2, 70}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.offset * 1000 + c.softness);
    auto white = [](int32_t, int32_t) -> uint32_t { return 0xFFFFFF; };
    ScopedBlock source(Picture(8, 8, 24, white));
    ScopedBlock shadow(ItemShadowImage(source.handle, c.offset, c.softness, 255));
    const int32_t pad = ItemShadowPad(c.offset, c.softness);
    const int32_t at = c.offset ? c.offset : pad / 2;
    ScopedBlock sharp(Picture(8 + pad, 8 + pad, 24, [at](int32_t x, int32_t y) -> uint32_t {
      return x >= at && x < at + 8 && y >= at && y < at + 8 ? 0xFFFFFF : 0;
    }));
    ScopedBlock blurred(FastBoxBlur(sharp.handle, c.softness + 2));
    ASSERT_NE(blurred.handle, nullptr);
    const std::vector<uint32_t> got = PicturePixels(shadow.handle);
    EXPECT_EQ(got, PicturePixels(blurred.handle));
    EXPECT_NE(got, PicturePixels(sharp.handle)) << "the blur changed something";
  }
}
