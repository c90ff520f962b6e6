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
    MovableHandle gdi = ReadParityFile(std::string(dir) + "/shape-" + scene.name + ".dib");
    ASSERT_NE(gdi, nullptr) << scene.name;
    MovableHandle native = RenderShapeScene(&scene);
    const int64_t different = CountDifferentPixels(gdi, native);
    std::printf("%-20s %4lld pixels differ (bound %d)\n", scene.name,
                static_cast<long long>(different), scene.tolerance);
    EXPECT_GE(different, 0) << scene.name;
    EXPECT_LE(different, scene.tolerance) << scene.name;
    MovableFree(gdi);
    MovableFree(native);
  }
}
