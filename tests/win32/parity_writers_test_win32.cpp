// Renders the six textures, the shape, mask, Simple, Snow and frame-set fill scenes and the motion
// builds through GDI and GDI+ and writes them to the folder "parity" for the native comparison in
// tests/parity.
#include <windows.h>

#include <fstream>
#include <string>

#include <gtest/gtest.h>

#include "tests/support/frame_set_scenes.h"
#include "tests/support/mask_scenes.h"
#include "tests/support/motion_scenes.h"
#include "tests/support/parity_files.h"
#include "tests/support/shape_scenes.h"
#include "tests/support/simple_scenes.h"
#include "tests/support/snow_scenes.h"
#include "tests/support/texture_scenes.h"

// First in this program, so that the default Perturbation fixes the noise tables here as it does
// in the native comparison.
TEST(Parity, WritesTheTextureGenerators) {
  CreateDirectoryA("parity", nullptr);
  for (int32_t type = 0; type < kTextureTypeCount; ++type) {
    ScopedBlock image(RenderTextureScene(type));
    EXPECT_TRUE(WriteParityFile("parity/texture-" + std::to_string(type) + ".dib", image.handle))
        << type;
  }
  EXPECT_TRUE(TextureSceneNoiseIsDefault());
}

TEST(Parity, WritesEveryShapeMaskAndSimpleFrame) {
  StartDrawingForTests();
  CreateDirectoryA("parity", nullptr);
  for (int32_t i = 0; i < kShapeSceneCount; ++i) {
    ScopedBlock image(RenderShapeScene(&kShapeScenes[i]));
    EXPECT_TRUE(
        WriteParityFile(std::string("parity/shape-") + kShapeScenes[i].name + ".dib", image.handle))
        << kShapeScenes[i].name;
  }
  for (int32_t i = 0; i < kMaskSceneCount; ++i) {
    MovableHandle mask, measures;
    ASSERT_EQ(RenderMaskScene(&kMaskScenes[i], &mask, &measures), 1) << kMaskScenes[i].name;
    ScopedBlock ownMask(mask), ownMeasures(measures);
    const std::string base = std::string("parity/mask-") + kMaskScenes[i].name;
    EXPECT_TRUE(WriteParityFile(base + ".dib", mask) &&
                WriteParityFile(base + "-measures.dib", measures));
  }
  std::vector<SimpleSceneFrame> frames;
  ASSERT_EQ(RenderSimpleScene(&frames), 1);
  ASSERT_EQ(frames.size(), 6u);
  for (size_t i = 0; i < frames.size(); ++i) {
    ScopedBlock image(frames[i].image);
    EXPECT_TRUE(WriteParityFile("parity/simple-" + std::to_string(i) + ".dib", image.handle));
  }
  for (int32_t i = 0; i < kFrameSetSceneCount; ++i) {
    ScopedBlock image(RenderFrameSetScene(i));
    EXPECT_TRUE(WriteParityFile(std::string("parity/fill-") + kFrameSetScenes[i].name + ".dib",
                                image.handle))
        << kFrameSetScenes[i].name;
  }
}

TEST(Parity, WritesTheSnowFrameSet) {
  StartDrawingForTests();
  CreateDirectoryA("parity", nullptr);
  std::vector<MovableHandle> frames;
  ASSERT_EQ(RenderSnowScene(&frames), 1);
  for (size_t i = 0; i < frames.size(); ++i) {
    ScopedBlock image(frames[i]);
    EXPECT_TRUE(WriteParityFile("parity/snow-" + std::to_string(i) + ".dib", image.handle));
  }
}

// Each build's frames, and its delays in order in a text file beside them.
TEST(Parity, WritesTheMotionBuilds) {
  StartDrawingForTests();
  CreateDirectoryA("parity", nullptr);
  for (int32_t i = 0; i < kMotionSceneCount; ++i) {
    const std::string base = std::string("parity/motion-") + kMotionScenes[i].name;
    std::vector<MotionFrame> frames;
    ASSERT_EQ(BuildMotionScene(i, &frames), 1) << kMotionScenes[i].name;
    std::ofstream delays(base + ".delays");
    for (size_t f = 0; f < frames.size(); ++f) {
      ScopedBlock image(frames[f].image);
      delays << frames[f].delay << "\n";
      EXPECT_TRUE(WriteParityFile(base + "-" + std::to_string(f) + ".dib", image.handle)) << base;
    }
  }
}
