// Compares the Simple scene's frames drawn by the Windows build (under Wine) with the same frames
// drawn natively. Only the font engines differ: glyph shapes and the measured text width, which
// sets the canvas (Wine's string measure keeps a trailing space, so each character measures a
// space's advance narrower there, and the Windows canvas is that much narrower). Printed per
// frame: both sizes, the share of pixels that differ over the common area, and the mean
// difference per channel of those pixels. The last frame, whose text has left the canvas, holds
// no glyph and must agree exactly.
#include <cstdio>
#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

#include "shell/packed_dib.h"
#include "tests/support/mask_scenes.h"
#include "tests/support/parity_files.h"
#include "tests/support/simple_scenes.h"

TEST(SimpleParity, FramesDifferOnlyWhereGlyphsDo) {
  const char* dir = std::getenv("GM5_PARITY_DIR");
  ASSERT_NE(dir, nullptr) << "GM5_PARITY_DIR must name the Windows run's parity folder";
  StartDrawingForTests();
  std::vector<SimpleSceneFrame> frames;
  ASSERT_EQ(RenderSimpleScene(&frames), 1);
  for (size_t i = 0; i < frames.size(); ++i) {
    ScopedBlock here(frames[i].image);
    ScopedBlock other(ReadParityFile(std::string(dir) + "/simple-" + std::to_string(i) + ".dib"));
    ScopedLock a(here.handle), b(other.handle);
    ASSERT_TRUE(a && b) << i;
    const BitmapInfoHeader* ha = reinterpret_cast<const BitmapInfoHeader*>(a.bytes);
    const BitmapInfoHeader* hb = reinterpret_cast<const BitmapInfoHeader*>(b.bytes);
    const int32_t width = std::min(ha->biWidth, hb->biWidth);
    const int32_t height = std::min(ha->biHeight, hb->biHeight);
    double differing = 0, channelSum = 0;
    for (int32_t y = 0; y < height; ++y)
      for (int32_t x = 0; x < width; ++x) {
        const uint32_t p = ReadDibPixel(a.bytes, x, y), q = ReadDibPixel(b.bytes, x, y);
        if (p == q) continue;
        ++differing;
        for (int s = 0; s < 24; s += 8)
          channelSum +=
              std::abs(static_cast<int>((p >> s) & 0xFF) - static_cast<int>((q >> s) & 0xFF));
      }
    const double share = differing / (static_cast<double>(width) * height);
    std::printf("simple-%zu native %dx%d windows %dx%d differing %.4f mean channel %.1f\n", i,
                ha->biWidth, ha->biHeight, hb->biWidth, hb->biHeight, share,
                differing ? channelSum / (3 * differing) : 0.0);
    EXPECT_EQ(ha->biHeight, hb->biHeight) << "the cell height sets the canvas height";
    EXPECT_LE(std::abs(ha->biWidth - hb->biWidth), 5 * 13) << "a space's advance per character";
    if (i + 1 == frames.size()) {
      EXPECT_EQ(differing, 0) << "no glyph, no difference";
    }
  }
}
