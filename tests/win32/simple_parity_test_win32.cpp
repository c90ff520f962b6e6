// Renders the Simple scene through GDI and GDI+ and writes its frames for the native comparison
// in tests/parity.
#include <windows.h>

#include <string>

#include <gtest/gtest.h>

#include "tests/support/mask_scenes.h"
#include "tests/support/parity_files.h"
#include "tests/support/simple_scenes.h"

TEST(SimpleParity, WritesEveryFrame) {
  StartDrawingForTests();
  CreateDirectoryA("parity", nullptr);
  std::vector<SimpleSceneFrame> frames;
  ASSERT_EQ(RenderSimpleScene(&frames), 1);
  ASSERT_EQ(frames.size(), 6u);
  for (size_t i = 0; i < frames.size(); ++i) {
    EXPECT_TRUE(WriteParityFile("parity/simple-" + std::to_string(i) + ".dib", frames[i].image));
    MovableFree(frames[i].image);
  }
}
