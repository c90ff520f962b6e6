// Compares the frame-set fills that the Windows build drew under Wine with the same fills drawn
// natively: the gradients are arithmetic alone, the balls and masks go through each platform's
// ellipse and polygon drawing.
#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

#include "tests/support/frame_set_scenes.h"
#include "tests/support/parity_files.h"

TEST(FrameSetParity, NativeFillsMatchWindowsWithinTheirBounds) {
  const char* dir = std::getenv("GM5_PARITY_DIR");
  ASSERT_NE(dir, nullptr) << "GM5_PARITY_DIR must name the Windows run's parity folder";
  for (int32_t i = 0; i < kFrameSetSceneCount; ++i) {
    const FrameSetScene& scene = kFrameSetScenes[i];
    ScopedBlock windows(ReadParityFile(std::string(dir) + "/fill-" + scene.name + ".dib"));
    ScopedBlock native(RenderFrameSetScene(i));
    PictureDifference d;
    ASSERT_EQ(ComparePictures(windows.handle, native.handle, &d), 1) << scene.name;
    std::printf("%-16s %4lld pixels differ, mean %.2f (bounds %d, %.1f)\n", scene.name,
                static_cast<long long>(d.differing), d.meanChannel, scene.tolerance,
                scene.meanBound);
    EXPECT_TRUE(d.width[0] == d.width[1] && d.height[0] == d.height[1]) << scene.name;
    EXPECT_LE(d.differing, scene.tolerance) << scene.name;
    if (d.differing) {
      EXPECT_LE(d.meanChannel, scene.meanBound) << scene.name;
    }
  }
}
