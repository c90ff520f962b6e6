// Renders the mask scenes through GDI+ and writes them for the native comparison in tests/parity.
#include <windows.h>

#include <string>

#include <gtest/gtest.h>

#include "tests/support/mask_scenes.h"
#include "tests/support/parity_files.h"

TEST(MaskParity, WritesEveryScene) {
  StartDrawingForTests();
  CreateDirectoryA("parity", nullptr);
  for (int32_t i = 0; i < kMaskSceneCount; ++i) {
    MovableHandle mask, measures;
    ASSERT_EQ(RenderMaskScene(&kMaskScenes[i], &mask, &measures), 1) << kMaskScenes[i].name;
    const std::string base = std::string("parity/mask-") + kMaskScenes[i].name;
    EXPECT_TRUE(WriteParityFile(base + ".dib", mask));
    EXPECT_TRUE(WriteParityFile(base + "-measures.dib", measures));
    MovableFree(mask);
    MovableFree(measures);
  }
}
