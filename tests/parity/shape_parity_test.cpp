// Compares the shape scenes that the Windows build drew through GDI (under Wine) with the same
// scenes drawn natively. GM5_PARITY_DIR names the folder the Windows run wrote them to.
#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

#include "tests/support/parity_files.h"
#include "tests/support/shape_scenes.h"

TEST(ShapeParity, NativeShapesMatchGdiWithinTheirBounds) {
  const char* dir = std::getenv("GM5_PARITY_DIR");
  ASSERT_NE(dir, nullptr) << "GM5_PARITY_DIR must name the Windows run's parity folder";
  for (int32_t i = 0; i < kShapeSceneCount; ++i) {
    const ShapeScene& scene = kShapeScenes[i];
    ScopedBlock gdi(ReadParityFile(std::string(dir) + "/shape-" + scene.name + ".dib"));
    ScopedBlock native(RenderShapeScene(&scene));
    PictureDifference d;
    ASSERT_EQ(ComparePictures(gdi.handle, native.handle, &d), 1) << scene.name;
    std::printf("%-20s %4lld pixels differ (bound %d)\n", scene.name,
                static_cast<long long>(d.differing), scene.tolerance);
    EXPECT_TRUE(d.width[0] == d.width[1] && d.height[0] == d.height[1]) << scene.name;
    EXPECT_LE(d.differing, scene.tolerance) << scene.name;
  }
}
