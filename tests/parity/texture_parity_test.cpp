// Compares the six texture generators' default pictures that the Windows build made (under Wine)
// with the same pictures made natively. No font is involved: they must agree byte for byte.
#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

#include "materials/texture_generator.h"
#include "tests/support/parity_files.h"
#include "tests/support/test_images.h"
#include "tests/support/texture_scenes.h"

TEST(TextureParity, DefaultPicturesAreIdentical) {
  const char* dir = std::getenv("GM5_PARITY_DIR");
  ASSERT_NE(dir, nullptr) << "GM5_PARITY_DIR must name the Windows run's parity folder";
  for (int32_t type = 0; type < kTextureTypeCount; ++type) {
    ScopedBlock native(RenderTextureScene(type));
    ScopedBlock windows(
        ReadParityFile(std::string(dir) + "/texture-" + std::to_string(type) + ".dib"));
    ASSERT_NE(native.handle, nullptr) << type;
    ASSERT_NE(windows.handle, nullptr) << type;
    EXPECT_TRUE(SameBlocks(native.handle, windows.handle)) << TextureGeneratorTable[type].name;
  }
  EXPECT_TRUE(TextureSceneNoiseIsDefault());
}
