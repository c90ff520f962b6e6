#include "text/text_mask.h"

#include <algorithm>
#include <cstring>
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

std::vector<uint8_t> Pixels(MovableHandle mask) {
  ScopedLock lock(mask);
  const BitmapInfoHeader* h = reinterpret_cast<const BitmapInfoHeader*>(lock.bytes);
  std::vector<uint8_t> out;
  for (int32_t y = 0; y < h->biHeight; ++y)
    for (int32_t x = 0; x < h->biWidth; ++x)
      out.push_back(static_cast<uint8_t>(ReadDibPixel(lock.bytes, x, y)));
  return out;
}

long Sum(const std::vector<uint8_t>& pixels) {
  long sum = 0;
  for (uint8_t v : pixels) sum += v;
  return sum;
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
  MovableHandle full = f.Mask("Hi ", a.data(), 3, 120, 255);
  MovableHandle grey = f.Mask("Hi ", a.data(), 3, 120, 128);
  MovableHandle moved = f.Mask("Hi ", a.data(), 10, 127, 255);
  MovableHandle hard = f.Mask("Hi ", a.data(), 3, 120, 128, 0);
  MovableHandle none = f.Mask("Hi ", a.data(), 3, 120, 0);
  const std::vector<uint8_t> p = Pixels(full), g = Pixels(grey), m = Pixels(moved);
  EXPECT_EQ(*std::max_element(p.begin(), p.end()), 255);
  EXPECT_EQ(*std::max_element(g.begin(), g.end()), 128);
  // Coverage sums scale with the level, give or take the engine's rounding per pixel.
  EXPECT_NEAR(static_cast<double>(Sum(g)) / Sum(p), 128.0 / 255, 0.01);
  EXPECT_EQ(Sum(Pixels(none)), 0);
  // Moving by whole pixels moves the same ink.
  for (int32_t y = 0; y < 44; ++y)
    for (int32_t x = 0; x < 120; ++x)
      ASSERT_EQ(p[y * 120 + x], m[y * 127 + x + 7]) << x << "," << y;
  // Hard edges on Wine's GDI+ are not guaranteed (see text_edges_posix), so only check the level.
  const std::vector<uint8_t> h = Pixels(hard);
  EXPECT_EQ(*std::max_element(h.begin(), h.end()), 128);
  // A mask narrower than the text is cut off, not refused.
  MovableHandle narrow = f.Mask("Hi ", a.data(), 3, 9, 255);
  ASSERT_NE(narrow, nullptr);
  const std::vector<uint8_t> n = Pixels(narrow);
  for (int32_t y = 0; y < 44; ++y)
    for (int32_t x = 0; x < 9; ++x) ASSERT_EQ(n[y * 9 + x], p[y * 120 + x]);
  for (MovableHandle k : {full, grey, moved, hard, none, narrow}) MovableFree(k);
}

TEST(RenderTextMask, OverlapsMergeByMaximum) {
  TestFont f(40, 1);
  std::vector<uint32_t> a;
  f.Measure("OO", &a, 50);
  MovableHandle pair = f.Mask("OO", a.data(), 2, 100, 255);
  const uint32_t single[1] = {0};
  MovableHandle first = f.Mask("O", single, 2, 100, 255);
  MovableHandle second = f.Mask("O", single, 2 + static_cast<int32_t>(a[0]), 100, 255);
  const std::vector<uint8_t> both = Pixels(pair), one = Pixels(first), two = Pixels(second);
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
  EXPECT_TRUE(SweepAllocationFailures([&] {
    MovableHandle mask = f.Mask("Ab ", a.data(), 1, 60, 200);
    MovableFree(mask);
    return mask != nullptr;
  }));
  EXPECT_TRUE(SweepAllocationFailures([&] {
    MovableHandle ring = RenderOutlineMask(nullptr, f.font.deviceContext, 1, 1, "Ab ", 60, 28, 1,
                                           24, 0, 0, kTestFace, a.data(), f.font.logFont);
    MovableFree(ring);
    return ring != nullptr;
  }));
}

TEST(TextLayout, PaddingPlacementAndCanvas) {
  EXPECT_EQ(TextPadding(0, 0, 0), 0);
  EXPECT_EQ(TextPadding(0, 0, 1), 1);
  EXPECT_EQ(TextPadding(0, 1, 0), 1);
  EXPECT_EQ(TextPadding(5, 40, 1), 10);
  const TextShifts upLeft = ShadowPlacement(0, 4), left = ShadowPlacement(4, 3);
  EXPECT_EQ(upLeft.textX, 4);
  EXPECT_EQ(upLeft.textY, 4);
  EXPECT_EQ(upLeft.shadowX, 0);
  EXPECT_EQ(left.textX, 3);
  EXPECT_EQ(left.textY, 0);
  EXPECT_EQ(left.shadowY, 0);
  const TextShifts downRight = ShadowPlacement(7, 2), other = ShadowPlacement(8, 2);
  EXPECT_EQ(downRight.shadowX, 2);
  EXPECT_EQ(downRight.shadowY, 2);
  EXPECT_EQ(downRight.textX, 0);
  EXPECT_EQ(other.shadowX + other.shadowY + other.textX + other.textY, 0);

  TextLayoutInput in = {"A", kTestFace, 30, 0, 0, 1, 100, 3, 0, 0, 1, 5, 0};
  TextLayout layout;
  ASSERT_EQ(BeginTextLayout(nullptr, &in, &layout), 1);
  EXPECT_EQ(layout.canvasWidth, layout.size.width + 6 + 5);
  EXPECT_EQ(layout.canvasHeight, layout.size.height + 6 + 5);
  EndTextLayout(&layout);
  in.text = "";
  EXPECT_EQ(BeginTextLayout(nullptr, &in, &layout), 0);
}

TEST(MaskOperations, DilateWidenCombineAndFill) {
  MovableHandle mask = CreateMask(5, 4);
  {
    ScopedLock lock(mask);
    WriteDibPixel(lock.bytes, 0, 0, 90);
    WriteDibPixel(lock.bytes, 3, 2, 200);
  }
  ScopedBlock owner(mask), grown(DilateMask(mask)), wide(WidenMask(mask, 8, 4, 2));
  ScopedBlock colours(RandomImage(6, 4, 24, 4)), argb(CombineAlpha(colours.handle, mask));
  ScopedBlock flat(FilledImage(2, 3, 6, 5, 0x00112233));
  ScopedLock g(grown.handle), w(wide.handle), c(argb.handle), src(colours.handle), fl(flat.handle);
  EXPECT_EQ(ReadDibPixel(g.bytes, 1, 1), 90u);
  EXPECT_EQ(ReadDibPixel(g.bytes, 2, 1), 200u);
  EXPECT_EQ(ReadDibPixel(g.bytes, 4, 3), 200u);
  EXPECT_EQ(ReadDibPixel(g.bytes, 2, 0), 0u);
  EXPECT_EQ(ReadDibPixel(w.bytes, 5, 2), 200u);
  EXPECT_EQ(ReadDibPixel(w.bytes, 2, 0), 90u);
  EXPECT_EQ(ReadDibPixel(w.bytes, 0, 0), 0u);
  EXPECT_EQ(ReadDibPixel(c.bytes, 3, 2), (ReadDibPixel(src.bytes, 3, 2) & 0xFFFFFF) | 200u << 24);
  EXPECT_EQ(ReadDibPixel(c.bytes, 5, 1) >> 24, 255u);  // beyond the mask
  EXPECT_EQ(reinterpret_cast<const BitmapInfoHeader*>(fl.bytes)->biWidth, 4);
  EXPECT_EQ(ReadDibPixel(fl.bytes, 3, 1), 0x00112233u);
  // Masks carry the grey table: entry i is blue, green and red i.
  const uint8_t* table = DibTable(g.bytes);
  for (int i : {0, 1, 128, 255}) {
    EXPECT_EQ(table[i * 4], i);
    EXPECT_EQ(table[i * 4 + 1], i);
    EXPECT_EQ(table[i * 4 + 2], i);
    EXPECT_EQ(table[i * 4 + 3], 0);
  }
}

TEST(MaskOperations, FastDilateAndWidenMatchPixelByPixelVersions) {
  for (uint32_t seed : {1u, 2u, 3u}) {
    const int32_t w = 13 + seed * 7, h = 5 + seed * 3;
    ScopedBlock mask(RandomImage(w, h, 8, seed));
    ScopedBlock dilated(DilateMask(mask.handle));
    ScopedLock in(mask.handle), out(dilated.handle);
    for (int32_t y = 0; y < h; ++y)
      for (int32_t x = 0; x < w; ++x) {
        uint32_t best = 0;
        for (int32_t dy = -1; dy <= 1; ++dy)
          for (int32_t dx = -1; dx <= 1; ++dx) {
            const uint32_t v = ReadDibPixel(in.bytes, x + dx, y + dy);
            if (v != 0xFFFFFFFF && v > best) best = v;
          }
        ASSERT_EQ(ReadDibPixel(out.bytes, x, y), best) << x << "," << y;
      }
    for (int32_t shift : {-3, 0, 1, 5}) {
      for (int32_t width : {w - 4, w + 4}) {
        ScopedBlock wide(WidenMask(mask.handle, width, h + 1, shift));
        ScopedLock o(wide.handle);
        for (int32_t y = 0; y < h + 1; ++y)
          for (int32_t x = 0; x < width; ++x) {
            const uint32_t v = y < h ? ReadDibPixel(in.bytes, x - shift, y) : 0xFFFFFFFF;
            ASSERT_EQ(ReadDibPixel(o.bytes, x, y), v == 0xFFFFFFFF ? 0u : v) << x << "," << shift;
          }
      }
    }
  }
}
