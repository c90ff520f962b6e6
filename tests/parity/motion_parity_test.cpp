// Compares small builds of the effects that move the finished picture or draw their own frames,
// made under Wine, with the same builds made natively. The builds' arithmetic is shared, so the
// frame count and every delay agree exactly; only the font engines differ: the cell height that
// sets the canvas height, the measured width that sets its width, and the glyph pixels.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/motion_scenes.h"
#include "tests/support/parity_files.h"

TEST(MotionParity, BuildsAgreeInFramesAndDelaysAndDifferOnlyInGlyphs) {
  const char* dir = std::getenv("GM5_PARITY_DIR");
  ASSERT_NE(dir, nullptr) << "GM5_PARITY_DIR must name the Windows run's parity folder";
  constexpr int32_t kWidthSlack = 8;  // measured 5: the Windows canvases are wider
  for (int32_t i = 0; i < kMotionSceneCount; ++i) {
    const MotionScene& scene = kMotionScenes[i];
    SCOPED_TRACE(scene.name);
    const std::string base = std::string(dir) + "/motion-" + scene.name;
    std::vector<int32_t> windowsDelays, nativeDelays;
    std::ifstream delays(base + ".delays");
    for (int32_t d; delays >> d;) windowsDelays.push_back(d);
    std::vector<MotionFrame> frames;
    ASSERT_EQ(BuildMotionScene(i, &frames), 1);
    double worst = 0;
    for (size_t f = 0; f < frames.size(); ++f) {
      ScopedBlock native(frames[f].image);
      nativeDelays.push_back(frames[f].delay);
      ScopedBlock windows(ReadParityFile(base + "-" + std::to_string(f) + ".dib"));
      PictureDifference d;
      ASSERT_EQ(ComparePictures(native.handle, windows.handle, &d), 1) << f;
      if (f == 0)
        std::printf("%-13s %3zu frames native %dx%d windows %dx%d", scene.name, frames.size(),
                    d.width[0], d.height[0], d.width[1], d.height[1]);
      EXPECT_EQ(d.height[0], d.height[1]) << f;
      EXPECT_LE(std::abs(d.width[0] - d.width[1]), kWidthSlack) << f;
      EXPECT_LE(d.share, scene.glyphShare) << f;
      worst = std::max(worst, d.share);
    }
    std::printf(" worst differing share %.4f (bound %.2f)\n", worst, scene.glyphShare);
    EXPECT_EQ(nativeDelays, windowsDelays);
  }
}
