#include "text/compositing.h"

#include "text/blur.h"
#include "text/image_copy.h"
#include "text/text_mask.h"

#include <cstring>
#include <functional>
#include <vector>

#include <gtest/gtest.h>

#include "shell/packed_dib.h"
#include "tests/support/alloc_sweep.h"
#include "tests/support/test_images.h"

namespace {

MovableHandle Filled(int w, int h, int depth, uint32_t value) {
  MovableHandle image = depth == 8 ? CreateMask(w, h) : CreatePackedDib(w, h, nullptr, depth);
  ScopedLock lock(image);
  for (int y = 0; y < h; ++y)
    for (int x = 0; x < w; ++x) WriteDibPixel(lock.bytes, x, y, value);
  return image;
}

uint32_t Pixel(MovableHandle image, int x, int y) {
  ScopedLock lock(image);
  return ReadDibPixel(lock.bytes, x, y);
}

}  // namespace

TEST(BlendPixel, TruncatesEachTermAndKeepsTheUnderAlpha) {
  EXPECT_EQ(BlendPixel(100, 200, 1), 99u);                          // 99 + 0: one lost
  EXPECT_EQ(BlendPixel(0x00FFFFFF, 0x00FFFFFF, 128), 0x00FFFFFFu);  // 127 + 128
  EXPECT_EQ(BlendPixel(0x00FFFFFF, 0x00FFFFFF, 100), 0x00FFFFFFu);  // 155 + 100, both exact
  EXPECT_EQ(BlendPixel(100, 200, 128), 149u);                       // 49 + 100 of 149.6
  EXPECT_EQ(BlendPixel(0x12345678, 0x00ABCDEF, 0), 0x12345678u);
  EXPECT_EQ(BlendPixel(0x12345678, 0x00ABCDEF, 255), 0x12ABCDEFu);
  EXPECT_EQ(BlendPixel(0x00000010, 0x00FF0020, 0x180), 0x00800017u);  // only the low byte counts
}

TEST(Layers, FillIsAnchoredToTheCanvasCorner) {
  // A fill picture narrower than the canvas: the columns beyond it stay as they were.
  ScopedBlock canvas(Filled(5, 3, 24, 0)), fill(RandomImage(4, 3, 24, 3));
  ScopedBlock mask(Filled(5, 3, 8, 255)), plane(Filled(5, 3, 8, 0));
  {
    ScopedLock c(canvas.handle), f(fill.handle), m(mask.handle), p(plane.handle);
    WriteDibPixel(m.bytes, 1, 1, 0);
    CompositeFillLayer(c.bytes, p.bytes, m.bytes, f.bytes);
  }
  EXPECT_EQ(Pixel(canvas.handle, 0, 0), Pixel(fill.handle, 0, 0));
  EXPECT_EQ(Pixel(canvas.handle, 1, 1), 0u);
  EXPECT_EQ(Pixel(canvas.handle, 4, 0), 0u);
  EXPECT_EQ(Pixel(plane.handle, 2, 2), 255u);
  EXPECT_EQ(Pixel(plane.handle, 1, 1), 0u);
}

// Canvas-sized pictures, walked row by row, against the per-pixel definition: the shadow window
// off every side of the canvas, coverage adding up and saturating in the alpha plane, and the
// outline read one column right from a ring four columns wider.
TEST(Layers, RowLoopsMatchThePixelDefinitionOnRandomPictures) {
  const int w = 37, h = 9;
  for (int shift : {-5, 0, 3}) {
    for (int withPlane : {0, 1}) {
      ScopedBlock canvas(RandomImage(w, h, 24, 1)), expected(RandomImage(w, h, 24, 1));
      ScopedBlock plane(RandomImage(w, h, 8, 2)), expectedPlane(RandomImage(w, h, 8, 2));
      ScopedBlock mask(RandomImage(w, h, 8, 3)), picture(RandomImage(w, h, 24, 4));
      ScopedBlock ring(RandomImage(w + 4, h, 8, 5)), ring2(RandomImage(w + 4, h, 8, 6));
      ScopedBlock picture2(RandomImage(w, h, 24, 7));
      {
        ScopedLock c(canvas.handle), p(plane.handle), m(mask.handle), s(picture.handle),
            r(ring.handle), e(expected.handle), ep(expectedPlane.handle), r2(ring2.handle),
            q(picture2.handle);
        void* pl = withPlane ? p.bytes : nullptr;
        CompositeShadowLayer(c.bytes, pl, m.bytes, s.bytes, shift, -shift);
        CompositeFillLayer(c.bytes, pl, m.bytes, s.bytes);
        CompositeOutlineLayer(c.bytes, pl, r.bytes, 0x00406080);
        CompositeOutlinePicture(c.bytes, pl, r2.bytes, q.bytes);
        auto add = [&](int x, int y, uint32_t v) {
          const uint32_t sum = ReadDibPixel(ep.bytes, x, y) + v;
          WriteDibPixel(ep.bytes, x, y, sum > 255 ? 255 : sum);
        };
        for (int y = 0; y < h; ++y)
          for (int x = 0; x < w; ++x) {
            const int sx = x - shift, sy = y + shift;
            if (sx < 0 || sy < 0 || sx >= w || sy >= h) continue;
            const uint32_t v = ReadDibPixel(m.bytes, x, y);
            if (withPlane)
              add(x, y, v);
            else
              WriteDibPixel(
                  e.bytes, x, y,
                  BlendPixel(ReadDibPixel(e.bytes, x, y), ReadDibPixel(s.bytes, sx, sy), v));
          }
        for (int y = 0; y < h; ++y)
          for (int x = 0; x < w; ++x) {
            const uint32_t v = ReadDibPixel(m.bytes, x, y), o = ReadDibPixel(r.bytes, x + 1, y);
            uint32_t pixel =
                BlendPixel(ReadDibPixel(e.bytes, x, y), ReadDibPixel(s.bytes, x, y), v);
            // The picture's ring, like the flat one, is read one column to the right.
            const uint32_t o2 = ReadDibPixel(r2.bytes, x + 1, y);
            pixel = BlendPixel(pixel, 0x00406080, o);
            WriteDibPixel(e.bytes, x, y, BlendPixel(pixel, ReadDibPixel(q.bytes, x, y), o2));
            if (withPlane) add(x, y, v), add(x, y, o), add(x, y, o2);
          }
      }
      EXPECT_TRUE(SameBlocks(canvas.handle, expected.handle)) << shift << " " << withPlane;
      EXPECT_TRUE(SameBlocks(plane.handle, expectedPlane.handle)) << shift << " " << withPlane;
    }
  }
}

TEST(Conversions, FlattenExpandAndAlpha) {
  ScopedBlock argb(CreatePackedDib32(2, 1));
  {
    ScopedLock lock(argb.handle);
    WriteDibPixel(lock.bytes, 0, 0, 0x80FF0000);
    WriteDibPixel(lock.bytes, 1, 0, 0x00123456);
  }
  ScopedBlock flat(FlattenOnColour(argb.handle, 0x000000FF)), mask(AlphaToMask(argb.handle));
  EXPECT_EQ(ReadPicture(flat.handle).values, (std::vector<uint32_t>{0x0080007F, 0x000000FF}));
  EXPECT_EQ(Pixel(mask.handle, 0, 0), 0x80u);
  EXPECT_EQ(FlattenOnColour(flat.handle, 0), nullptr);
  EXPECT_EQ(TakePicture(AlphaToMask(flat.handle)).At(1, 0), 255u);
  EXPECT_EQ(TakePicture(ExpandToArgb(mask.handle)).At(0, 0), 0xFF808080u);  // the grey table
  EXPECT_EQ(TakePicture(ExpandToArgb(argb.handle)).At(1, 0), 0xFF123456u);
}

TEST(Conversions, BitmapFileWithAShortTable) {
  // A 2 by 1 picture of 8 bits whose file lists only two colours.
  std::vector<uint8_t> file(14 + 40 + 8 + 4, 0);
  BitmapInfoHeader h = {};
  h.biSize = 40, h.biWidth = 2, h.biHeight = 1, h.biPlanes = 1, h.biBitCount = 8, h.biClrUsed = 2;
  std::memcpy(file.data() + 14, &h, 40);
  const uint8_t table[8] = {0x30, 0x20, 0x10, 0, 0xCC, 0xBB, 0xAA, 0};
  std::memcpy(file.data() + 54, table, 8);
  file[62] = 1, file[63] = 0;
  EXPECT_EQ(TakePicture(FlattenBitmapFile(file.data(), file.size(), 0)).values,
            (std::vector<uint32_t>{0x00CCBBAA, 0x00302010}));
  EXPECT_EQ(FlattenBitmapFile(file.data(), file.size() - 1, 0), nullptr);
  EXPECT_TRUE(SweepAllocationFailures([&] {
    MovableHandle made = FlattenBitmapFile(file.data(), file.size(), 0);
    MovableFree(made);
    return made != nullptr;
  }));
}

TEST(Layers, SofteningBlursOnlyWhenSoftAndFinishingCombinesAlpha) {
  ScopedBlock mask(RandomImage(50, 45, 8, 8));
  const MovableHandle same = mask.handle;
  ASSERT_EQ(SoftenShadowMask(&mask.handle, 0), 1);
  EXPECT_EQ(mask.handle, same);
  ScopedBlock copy(CopyMovableBlock(mask.handle)), expected(GaussianBlur(copy.handle, 200, 12));
  ASSERT_EQ(SoftenShadowMask(&mask.handle, 10), 1);  // the default softness: sigma 1.2
  EXPECT_TRUE(SameBlocks(mask.handle, expected.handle));

  const long live = MovableLiveCount();
  MovableHandle canvas = Filled(3, 2, 24, 0x00123456);
  EXPECT_EQ(FinishTextFrame(canvas, nullptr), canvas);
  // With a plane, both inputs are consumed and the ARGB frame comes back.
  EXPECT_EQ(TakePicture(FinishTextFrame(canvas, Filled(3, 2, 8, 77))).At(2, 1), 0x4D123456u);
  EXPECT_EQ(MovableLiveCount(), live);
}

TEST(ImageOperations, EveryMakerFreesWhatItMadeWhenAllocationFails) {
  ScopedBlock rgb(RandomImage(9, 7, 24, 31)), argb(RandomImage(9, 7, 32, 32));
  ScopedBlock mask(RandomImage(9, 7, 8, 33));
  const std::function<MovableHandle()> makers[] = {
      [&] { return FastBoxBlur(rgb.handle, 12); },
      [&] { return FlattenOnColour(argb.handle, 0x00102030); },
      [&] { return ExpandToArgb(mask.handle); },
      [&] { return AlphaToMask(argb.handle); },
      [&] { return CreateImageLike(rgb.handle); },
      [&] { return RollDown(mask.handle, 3); },
      [&] { return DilateMask(mask.handle); },
      [&] { return WidenMask(mask.handle, 13, 7, 1); },
      [&] { return CombineAlpha(rgb.handle, mask.handle); },
      [&] { return FilledImage(0, 0, 5, 4, 0x00FFFFFF); },
  };
  for (size_t i = 0; i < sizeof makers / sizeof makers[0]; ++i) {
    EXPECT_TRUE(SweepAllocationFailures([&] {
      MovableHandle made = makers[i]();
      MovableFree(made);
      return made != nullptr;
    })) << "maker "
        << i;
  }
}
