#include "text/text_mask.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <numeric>
#include <vector>

#include <gtest/gtest.h>

#include "shell/packed_dib.h"
#include "tests/support/alloc_sweep.h"
#include "tests/support/drawing_session.h"
#include "tests/support/test_images.h"
#include "text/compositing.h"
#include "text/text_layout.h"

namespace {

// A layout font of the test face and a few text calls on it.
struct TestFont {
  LayoutFont font;
  int32_t size;
  explicit TestFont(int32_t cell, int32_t bold = 0) : size(cell) {
    EXPECT_EQ(CreateLayoutFont(nullptr, kTestFace, cell, bold, 0, &font), 1);
  }
  ~TestFont() { DeleteLayoutFont(&font); }
  TextSize Measure(const char* text, std::vector<uint32_t>* advances, int32_t percent = 100) {
    advances->assign(std::strlen(text) + 16, 0);
    TextSize size = {-1, -1};
    EXPECT_EQ(MeasureText(font.deviceContext, nullptr, text, &size, 0, 0, this->size, kTestFace,
                          percent, font.logFont, advances->data()),
              1);
    return size;
  }
  MovableHandle Mask(const char* text, const uint32_t* advances, int32_t x, int32_t width,
                     int32_t level, int32_t antialias = 1, GlyphCache* cache = nullptr) {
    return RenderTextMask(nullptr, font.deviceContext, x, 2, text, width, size + 4, level,
                          antialias, size, 0, 0, kTestFace, advances, font.logFont, cache);
  }
};

std::vector<uint32_t> Pixels(MovableHandle mask) {
  return ReadPicture(mask).values;
}

}  // namespace

TEST(MeasureText, AdvancesFoldAccentsAndEmptyTextHasTheCellHeight) {
  TestFont f(48);
  std::vector<uint32_t> a;
  const TextSize empty = f.Measure("", &a);
  EXPECT_EQ(empty.width, 0);
  EXPECT_EQ(empty.height, FontCellHeight(f.font.deviceContext));
  const TextSize both = f.Measure("B\xDF ", &a);  // B, sharp s (measured as B), space
  EXPECT_EQ(a[0], a[1]);
  EXPECT_EQ(both.width, static_cast<int32_t>(a[0] + a[1] + a[2]));
  EXPECT_GT(a[2], 0u);
  SetAccentCompensation(0);
  f.Measure("B\xDF", &a);
  SetAccentCompensation(1);
  EXPECT_NE(a[0], a[1]);
  EXPECT_EQ(FoldAccent(0xF0), 'o');
  EXPECT_EQ(FoldAccent(0xC6), 0xC6);
  EXPECT_EQ(FoldAccent(0xFF), 'y');
  // Character space scales each advance, truncating.
  std::vector<uint32_t> half;
  f.Measure("W", &a);
  f.Measure("W", &half, 50);
  EXPECT_EQ(half[0], a[0] / 2);
}

TEST(RenderTextMask, LevelSetsTheMaximumAndPlacementIsExact) {
  TestFont f(40);
  std::vector<uint32_t> a;
  f.Measure("Hi ", &a);
  // x, width, level, antialias; hard edges on Wine's GDI+ are not guaranteed, so only the level.
  const int32_t masks[][4] = {{3, 120, 255, 1}, {3, 120, 128, 1}, {10, 127, 255, 1},
                              {3, 120, 128, 0}, {3, 120, 0, 1},   {3, 30, 255, 1}};
  std::vector<uint32_t> p[6];
  for (int i = 0; i < 6; ++i) {
    ScopedBlock mask(f.Mask("Hi ", a.data(), masks[i][0], masks[i][1], masks[i][2], masks[i][3]));
    ASSERT_NE(mask.handle, nullptr) << i;  // a mask narrower than the text is cut off, not refused
    p[i] = Pixels(mask.handle);
    EXPECT_EQ(*std::max_element(p[i].begin(), p[i].end()), static_cast<uint32_t>(masks[i][2])) << i;
  }
  // Coverage sums scale with the level, give or take the engine's rounding per pixel.
  EXPECT_NEAR(std::accumulate(p[1].begin(), p[1].end(), 0.0) /
                  std::accumulate(p[0].begin(), p[0].end(), 0.0),
              128.0 / 255, 0.01);
  // Moving by whole pixels moves the same ink, and cutting keeps the ink left of the cut.
  for (int32_t y = 0; y < 44; ++y)
    for (int32_t x = 0; x < 120; ++x) {
      ASSERT_EQ(p[0][y * 120 + x], p[2][y * 127 + x + 7]) << x << "," << y;
      if (x < 30) {
        ASSERT_EQ(p[5][y * 30 + x], p[0][y * 120 + x]) << x << "," << y;
      }
    }
}

TEST(RenderTextMask, OverlapsMergeByMaximum) {
  TestFont f(40, 1);
  std::vector<uint32_t> a;
  f.Measure("OO", &a, 50);
  MovableHandle pair = f.Mask("OO", a.data(), 2, 100, 255);
  const uint32_t single[1] = {0};
  MovableHandle first = f.Mask("O", single, 2, 100, 255);
  MovableHandle second = f.Mask("O", single, 2 + static_cast<int32_t>(a[0]), 100, 255);
  const std::vector<uint32_t> both = Pixels(pair), one = Pixels(first), two = Pixels(second);
  int overlap = 0;
  for (size_t i = 0; i < both.size(); ++i) {
    ASSERT_EQ(both[i], std::max(one[i], two[i])) << i;
    overlap += one[i] && two[i];
  }
  EXPECT_GT(overlap, 10);
  for (MovableHandle k : {pair, first, second}) MovableFree(k);
}

TEST(RenderOutlineMask, RingAroundTheTextOneColumnRight) {
  TestFont f(40, 1);
  std::vector<uint32_t> a;
  f.Measure("I", &a);
  const int32_t width = 40, height = 44;
  ScopedBlock text(f.Mask("I", a.data(), 4, width, 255));
  ScopedBlock ring(RenderOutlineMask(nullptr, f.font.deviceContext, 4, 2, "I", width, height, 1, 40,
                                     0, 0, kTestFace, a.data(), f.font.logFont));
  ASSERT_NE(ring.handle, nullptr);
  ScopedLock t(text.handle), r(ring.handle);
  EXPECT_EQ(reinterpret_cast<const BitmapInfoHeader*>(r.bytes)->biWidth, width + 4);
  int inside = 0, edge = 0, outside = 0;
  for (int32_t y = 0; y < height; ++y)
    for (int32_t x = 0; x < width; ++x) {
      const uint32_t v = ReadDibPixel(t.bytes, x, y), o = ReadDibPixel(r.bytes, x + 1, y);
      if (v == 255) {
        ASSERT_EQ(o, 0u);
        ++inside;
      } else if (v) {
        ASSERT_EQ(o, 255 - v);
        ++edge;
      } else if (o) {
        ++outside;
      }
    }
  EXPECT_GT(inside, 100);
  EXPECT_GT(outside, 40);  // the dilated ring just outside the glyph
  EXPECT_EQ(ReadDibPixel(r.bytes, 0, 20), 0u);
}

TEST(TextMasks, GlyphCacheGivesTheSameBytes) {
  TextLayoutInput in = {"Caf\xE9 Zebra!", kTestFace, 36, 1, 0, 1, 90, 0, 10, 1, 1, 4, 0};
  TextLayout plain, cached;
  ASSERT_EQ(BeginTextLayout(nullptr, &in, &plain), 1);
  in.useGlyphCache = 1;
  ASSERT_EQ(BeginTextLayout(nullptr, &in, &cached), 1);
  ASSERT_NE(cached.cache, nullptr);
  for (int pass = 0; pass < 2; ++pass) {
    for (int32_t level : {128, 255, 0}) {
      MovableHandle a = LayoutTextMask(&plain, 3, 2, level),
                    b = LayoutTextMask(&cached, 3, 2, level);
      EXPECT_TRUE(SameBlocks(a, b)) << level;
      MovableFree(a), MovableFree(b);
    }
    MovableHandle a = LayoutOutlineMask(&plain, 2, 2), b = LayoutOutlineMask(&cached, 2, 2);
    EXPECT_TRUE(SameBlocks(a, b));
    MovableFree(a), MovableFree(b);
  }
  EndTextLayout(&plain);
  EndTextLayout(&cached);
}

TEST(TextMasks, AllocationFailuresLeakNothing) {
  TestFont f(24);
  std::vector<uint32_t> a;
  f.Measure("Ab ", &a);
  const std::function<MovableHandle()> makers[] = {
      [&] { return f.Mask("Ab ", a.data(), 1, 60, 200); },
      [&] {
        return RenderOutlineMask(nullptr, f.font.deviceContext, 1, 1, "Ab ", 60, 28, 1, 24, 0, 0,
                                 kTestFace, a.data(), f.font.logFont);
      }};
  for (const auto& make : makers)
    EXPECT_TRUE(SweepAllocationFailures([&] {
      MovableHandle mask = make();
      MovableFree(mask);
      return mask != nullptr;
    }));
}

TEST(TextLayout, PaddingPlacementAndCanvas) {
  const int32_t padding[][4] = {{0, 0, 0, 0}, {0, 0, 1, 1}, {0, 1, 0, 1}, {5, 40, 1, 10}};
  for (const auto& p : padding) EXPECT_EQ(TextPadding(p[0], p[1], p[2]), p[3]) << p[0] << p[1];
  // Shadow x, y and text x, y for each direction at offset 3; 8 puts the shadow on the text.
  const int32_t shifts[9][4] = {{0, 0, 3, 3}, {0, 0, 0, 3}, {3, 0, 0, 3},
                                {3, 0, 0, 0}, {0, 0, 3, 0}, {0, 3, 3, 0},
                                {0, 3, 0, 0}, {3, 3, 0, 0}, {0, 0, 0, 0}};
  for (int32_t d = 0; d < 9; ++d) {
    const TextShifts s = ShadowPlacement(d, 3);
    EXPECT_EQ((std::vector<int32_t>{s.shadowX, s.shadowY, s.textX, s.textY}),
              std::vector<int32_t>(shifts[d], shifts[d] + 4))
        << d;
  }
  TextLayoutInput in = {"A", kTestFace, 30, 0, 0, 1, 100, 3, 0, 0, 1, 5, 0};
  TextLayout layout;
  ASSERT_EQ(BeginTextLayout(nullptr, &in, &layout), 1);
  EXPECT_EQ(layout.canvasWidth, layout.size.width + 6 + 5);
  EXPECT_EQ(layout.canvasHeight, layout.size.height + 6 + 5);
  EndTextLayout(&layout);
  in.text = "";
  EXPECT_EQ(BeginTextLayout(nullptr, &in, &layout), 0);
}

TEST(MaskOperations, CombineFillAndTheGreyTable) {
  ScopedBlock mask(CreateMask(5, 4));
  {
    ScopedLock lock(mask.handle);
    WriteDibPixel(lock.bytes, 3, 2, 200);
  }
  ScopedBlock colours(RandomImage(6, 4, 24, 4)), argb(CombineAlpha(colours.handle, mask.handle));
  ScopedBlock flat(FilledImage(2, 3, 6, 5, 0x00112233));
  ScopedLock m(mask.handle), c(argb.handle), src(colours.handle), fl(flat.handle);
  EXPECT_EQ(ReadDibPixel(c.bytes, 3, 2), (ReadDibPixel(src.bytes, 3, 2) & 0xFFFFFF) | 200u << 24);
  EXPECT_EQ(ReadDibPixel(c.bytes, 5, 1) >> 24, 255u);  // beyond the mask
  EXPECT_EQ(reinterpret_cast<const BitmapInfoHeader*>(fl.bytes)->biWidth, 4);
  EXPECT_EQ(ReadDibPixel(fl.bytes, 3, 1), 0x00112233u);
  // Masks carry the grey table: entry i is blue, green and red i.
  uint32_t entry;
  for (int i : {0, 1, 128, 255}) {
    std::memcpy(&entry, DibTable(m.bytes) + i * 4, 4);
    EXPECT_EQ(entry, i * 0x010101u) << i;
  }
}

// Dilation takes the largest of the 3 by 3 neighbourhood; widening shifts rows into a wider or
// narrower mask and clears what the source does not cover.
TEST(MaskOperations, DilateAndWidenMatchPixelByPixelVersions) {
  for (uint32_t seed : {1u, 2u, 3u}) {
    const int32_t w = 13 + seed * 7, h = 5 + seed * 3;
    ScopedBlock mask(RandomImage(w, h, 8, seed)), dilated(DilateMask(mask.handle));
    ScopedLock in(mask.handle), out(dilated.handle);
    auto at = [&](int32_t x, int32_t y) {
      const uint32_t v = ReadDibPixel(in.bytes, x, y);
      return v == 0xFFFFFFFF ? 0u : v;
    };
    for (int32_t y = 0; y < h; ++y)
      for (int32_t x = 0; x < w; ++x) {
        uint32_t best = 0;
        for (int32_t dy = -1; dy <= 1; ++dy)
          for (int32_t dx = -1; dx <= 1; ++dx) best = std::max(best, at(x + dx, y + dy));
        ASSERT_EQ(ReadDibPixel(out.bytes, x, y), best) << x << "," << y;
      }
    for (int32_t shift : {-3, 0, 1, 5})
      for (int32_t width : {w - 4, w + 4}) {
        ScopedBlock wide(WidenMask(mask.handle, width, h + 1, shift));
        ScopedLock o(wide.handle);
        for (int32_t y = 0; y < h + 1; ++y)
          for (int32_t x = 0; x < width; ++x)
            ASSERT_EQ(ReadDibPixel(o.bytes, x, y), y < h ? at(x - shift, y) : 0u)
                << x << "," << shift;
      }
  }
}
