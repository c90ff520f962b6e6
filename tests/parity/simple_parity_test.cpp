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
    PictureDifference d;
    ASSERT_EQ(ComparePictures(here.handle, other.handle, &d), 1) << i;
    std::printf("simple-%zu native %dx%d windows %dx%d differing %.4f mean channel %.1f\n", i,
                d.width[0], d.height[0], d.width[1], d.height[1], d.share, d.meanChannel);
    EXPECT_EQ(d.height[0], d.height[1]) << "the cell height sets the canvas height";
    EXPECT_LE(std::abs(d.width[0] - d.width[1]), 5 * 13) << "a space's advance per character";
    if (i + 1 == frames.size()) {
      EXPECT_EQ(d.differing, 0) << "no glyph, no difference";
    }
  }
}
