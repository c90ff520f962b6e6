// Renders the shape scenes through GDI and writes them for the native comparison in tests/parity.
#include <windows.h>

#include <string>

#include <gtest/gtest.h>

#include "tests/support/parity_files.h"
#include "tests/support/shape_scenes.h"

TEST(ShapeParity, WritesEveryScene) {
  CreateDirectoryA("parity", nullptr);
  for (int32_t i = 0; i < kShapeSceneCount; ++i) {
    MovableHandle image = RenderShapeScene(&kShapeScenes[i]);
    ASSERT_NE(image, nullptr) << kShapeScenes[i].name;
    EXPECT_TRUE(
        WriteParityFile(std::string("parity/shape-") + kShapeScenes[i].name + ".dib", image));
    MovableFree(image);
  }
}
