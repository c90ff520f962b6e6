// Compares the text masks that the Windows build drew through GDI+ (under Wine) with the same
// masks drawn natively: glyph boxes, cell height, coverage sums and pixel differences, printed for
// every scene and held to the scene's bounds. Spaces' boxes and MeasureText's advances are printed
// but not bounded: Wine's string measure keeps a trailing space, so a lone space measures as its
// advance plus the padding, where GDI+, which the native measure follows, gives the padding alone;
// every other character then comes out one space's advance narrower under Wine.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

#include "shell/packed_dib.h"
#include "tests/support/mask_scenes.h"
#include "tests/support/parity_files.h"

namespace {

struct Picture {
  ScopedBlock block;
  ScopedLock lock;
  const BitmapInfoHeader* header;
  explicit Picture(MovableHandle h)
      : block(h), lock(h), header(reinterpret_cast<const BitmapInfoHeader*>(lock.bytes)) {}
  uint32_t At(int32_t x, int32_t y) const { return ReadDibPixel(lock.bytes, x, y); }
};

}  // namespace

TEST(MaskParity, NativeMasksMatchGdiplusWithinTheirBounds) {
  const char* dir = std::getenv("GM5_PARITY_DIR");
  ASSERT_NE(dir, nullptr) << "GM5_PARITY_DIR must name the Windows run's parity folder";
  StartDrawingForTests();
  for (int32_t i = 0; i < kMaskSceneCount; ++i) {
    const MaskScene& scene = kMaskScenes[i];
    const std::string base = std::string(dir) + "/mask-" + scene.name;
    MovableHandle nativeMask, nativeMeasures;
    ASSERT_EQ(RenderMaskScene(&scene, &nativeMask, &nativeMeasures), 1) << scene.name;
    Picture here(nativeMask), hereMeasures(nativeMeasures);
    Picture other(ReadParityFile(base + ".dib")),
        otherMeasures(ReadParityFile(base + "-measures.dib"));
    ASSERT_TRUE(other.lock && otherMeasures.lock) << scene.name;
    ASSERT_EQ(other.header->biWidth, here.header->biWidth) << scene.name;
    int32_t worstBox = 0, worstAdvance = 0;
    for (int32_t x = 0; x < here.header->biWidth / scene.size; ++x) {
      const int32_t box =
          std::abs(static_cast<int32_t>(hereMeasures.At(x, 0) - otherMeasures.At(x, 0)));
      const int32_t advance =
          std::abs(static_cast<int32_t>(hereMeasures.At(x, 1) - otherMeasures.At(x, 1)));
      if (scene.text[x] != ' ' && box > worstBox) worstBox = box;
      if (advance > worstAdvance) worstAdvance = advance;
    }
    const int32_t width = here.header->biWidth;
    const int32_t height = std::min(here.header->biHeight, other.header->biHeight);
    double sumHere = 0, sumOther = 0, different = 0;
    for (int32_t y = 0; y < here.header->biHeight; ++y)
      for (int32_t x = 0; x < width; ++x) sumHere += here.At(x, y);
    for (int32_t y = 0; y < other.header->biHeight; ++y)
      for (int32_t x = 0; x < width; ++x) sumOther += other.At(x, y);
    for (int32_t y = 0; y < height; ++y)
      for (int32_t x = 0; x < width; ++x)
        different +=
            std::abs(static_cast<int32_t>(here.At(x, y)) - static_cast<int32_t>(other.At(x, y)));
    const double coverage = (sumOther - sumHere) / sumHere, pixels = different / sumHere;
    std::printf(
        "%-11s box %d height %3d/%3d coverage %+.4f (bound %.2f) pixels %.4f (bound %.2f)"
        "; measured advances up to %d apart\n",
        scene.name, worstBox, here.header->biHeight, other.header->biHeight, coverage,
        scene.coverageBound, pixels, scene.pixelBound, worstAdvance);
    EXPECT_LE(worstBox, kMaskBoxBound) << scene.name;
    EXPECT_LE(std::abs(here.header->biHeight - other.header->biHeight), kMaskHeightBound)
        << scene.name;
    EXPECT_LE(std::fabs(coverage), scene.coverageBound) << scene.name;
    EXPECT_LE(pixels, scene.pixelBound) << scene.name;
  }
}
