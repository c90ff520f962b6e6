// The fill cache hands out exactly what MaterialFill makes, leaves the runtime generator as a new
// fill would, generates each texture once, and leaves every frame of the common renderer as it
// was without it.
#include <cstring>

#include <gtest/gtest.h>

#include "effects/frame_renderer.h"
#include "materials/fill_cache.h"
#include "shell/crt_random.h"
#include "tests/support/alloc_sweep.h"
#include "tests/support/drawing_session.h"
#include "tests/support/mask_scenes.h"
#include "tests/support/test_images.h"

namespace {

Material TextureMaterial(int32_t type) {
  Material m;
  InitMaterial(&m);
  m.kind = kMaterialTexture;
  m.texture.TextureType = type;
  m.texture.CreaterCount = 40;
  return m;
}

}  // namespace

TEST(FillCache, CopiesWhatAFillMakesAndLeavesTheGeneratorAlike) {
  {
    // The fill that makes Perturbation's noise tables is not kept; let it be made here.
    Material first = TextureMaterial(kTexturePerturbation);
    ScopedBlock tables(MaterialFill(&first, 4, 4));
  }
  ScopedFillCache fills;
  for (int32_t type = 0; type < kTextureTypeCount; ++type) {
    for (int32_t bubbles : {64, 0}) {  // no bubbles: a Perturbation that leaves the stream alone
      Material plain = TextureMaterial(type), cached = plain;
      plain.texture.BubbleCount = cached.texture.BubbleCount = bubbles;
      ScopedBlock first(CachedMaterialFill(&fills.cache, &cached, 60, 34));
      crt::srand(5);
      ScopedBlock expected(MaterialFill(&plain, 60, 34));
      const uint32_t after = crt::state();
      crt::srand(5);
      MovableFailAllocation(0);
      ScopedBlock again(CachedMaterialFill(&fills.cache, &cached, 60, 34));
      EXPECT_EQ(MovableAllocationCount(), 1) << "a copy, not a new texture: type " << type;
      EXPECT_EQ(crt::state(), after) << type;
      EXPECT_TRUE(SameBlocks(first.handle, expected.handle) &&
                  SameBlocks(again.handle, expected.handle))
          << type;
      EXPECT_EQ(std::memcmp(&plain, &cached, sizeof(plain)), 0) << "the record as a fill leaves it";
    }
  }
  // Another size or another record is another fill.
  Material m = TextureMaterial(kTextureFractal2);
  ScopedBlock a(CachedMaterialFill(&fills.cache, &m, 20, 20));
  m.texture.SeedValue[0] += 1;
  ScopedBlock b(CachedMaterialFill(&fills.cache, &m, 20, 20));
  EXPECT_FALSE(SameBlocks(a.handle, b.handle));
}

TEST(FillCache, FailsCleanlyWhenMemoryFails) {
  EXPECT_TRUE(SweepAllocationFailures(
      [] {
        ScopedFillCache fills;
        Material m = TextureMaterial(kTextureCraters);
        ScopedBlock a(CachedMaterialFill(&fills.cache, &m, 30, 20));
        ScopedBlock b(CachedMaterialFill(&fills.cache, &m, 30, 20));
        return a.handle && b.handle;
      },
      100000, true));
}

// Background, fill and shadow textures over several frames: the same bytes with and without it.
TEST(FillCache, FramesOfTheCommonRendererAreUnchanged) {
  StartDrawingForTests();
  Material fill = TextureMaterial(kTextureFractal3), shadow = TextureMaterial(kTextureCraters),
           background = TextureMaterial(kTexturePerturbation);
  FrameSettings settings{};
  settings.text = {"Tex", kTestFace, 30, 1, 0, 1, 100, 2, 6, 1, 1, 4, 0};
  settings.fillOpacity = settings.shadowOpacity = 255;
  settings.shadowDirection = 7;
  settings.fill = &fill;
  settings.shadow = &shadow;
  settings.background = &background;
  ScopedFillCache fills;
  for (int32_t x : {-40, 0, 25}) {
    settings.fills = nullptr;
    ScopedBlock plain(RenderStandardFrame(nullptr, &settings, x, 0));
    settings.fills = &fills.cache;
    ScopedBlock cached(RenderStandardFrame(nullptr, &settings, x, 0));
    ASSERT_NE(plain.handle, nullptr);
    EXPECT_TRUE(SameBlocks(plain.handle, cached.handle)) << x;
  }
}
