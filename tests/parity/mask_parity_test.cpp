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
#include <numeric>
#include <string>

#include <gtest/gtest.h>

#include "tests/support/mask_scenes.h"
#include "tests/support/parity_files.h"
#include "tests/support/test_images.h"

TEST(MaskParity, NativeMasksMatchGdiplusWithinTheirBounds) {
  const char* dir = std::getenv("GM5_PARITY_DIR");
  ASSERT_NE(dir, nullptr) << "GM5_PARITY_DIR must name the Windows run's parity folder";
  StartDrawingForTests();
  for (int32_t i = 0; i < kMaskSceneCount; ++i) {
    const MaskScene& scene = kMaskScenes[i];
    const std::string base = std::string(dir) + "/mask-" + scene.name;
    MovableHandle nativeMask, nativeMeasures;
    ASSERT_EQ(RenderMaskScene(&scene, &nativeMask, &nativeMeasures), 1) << scene.name;
    const PictureValues here = TakePicture(nativeMask), hereMeasures = TakePicture(nativeMeasures);
    const PictureValues other = TakePicture(ReadParityFile(base + ".dib"));
    const PictureValues otherMeasures = TakePicture(ReadParityFile(base + "-measures.dib"));
    ASSERT_TRUE(!other.values.empty() && !otherMeasures.values.empty()) << scene.name;
    ASSERT_EQ(other.width, here.width) << scene.name;
    int32_t worstBox = 0, worstAdvance = 0;
    for (int32_t x = 0; x < here.width / scene.size; ++x) {
      const int32_t box =
          std::abs(static_cast<int32_t>(hereMeasures.At(x, 0) - otherMeasures.At(x, 0)));
      const int32_t advance =
          std::abs(static_cast<int32_t>(hereMeasures.At(x, 1) - otherMeasures.At(x, 1)));
      if (scene.text[x] != ' ') worstBox = std::max(worstBox, box);
      worstAdvance = std::max(worstAdvance, advance);
    }
    const double sumHere = std::accumulate(here.values.begin(), here.values.end(), 0.0);
    const double sumOther = std::accumulate(other.values.begin(), other.values.end(), 0.0);
    double different = 0;
    for (size_t i = 0; i < std::min(here.values.size(), other.values.size()); ++i)
      different += std::abs(static_cast<double>(here.values[i]) - other.values[i]);
    const double coverage = (sumOther - sumHere) / sumHere, pixels = different / sumHere;
    std::printf(
        "%-11s box %d height %3d/%3d coverage %+.4f (bound %.2f) pixels %.4f (bound %.2f)"
        "; measured advances up to %d apart\n",
        scene.name, worstBox, here.height, other.height, coverage, scene.coverageBound, pixels,
        scene.pixelBound, worstAdvance);
    EXPECT_LE(worstBox, kMaskBoxBound) << scene.name;
    EXPECT_LE(std::abs(here.height - other.height), kMaskHeightBound) << scene.name;
    EXPECT_LE(std::fabs(coverage), scene.coverageBound) << scene.name;
    EXPECT_LE(pixels, scene.pixelBound) << scene.name;
  }
}
