// The texture generators against the plain references of tests/support, byte for byte on random
// records at several sizes; the transform against a direct sum; what the process-wide noise
// tables and the mesh rule imply; and failure sweeps.
#include <cmath>
#include <complex>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "materials/inverse_fourier.h"
#include "materials/texture_generator.h"
#include "tests/support/alloc_sweep.h"
#include "tests/support/test_images.h"
#include "tests/support/texture_reference.h"

namespace {

// Makes sure the noise tables exist and returns the seed that fixed them.
uint32_t NoiseSeed() {
  TextureItem item;
  InitTextureItem(&item);
  item.TextureType = kTexturePerturbation;
  item.rect[2] = item.rect[3] = 4;
  ScopedBlock image(GeneratePerturbation(&item));
  uint32_t seed = 0;
  EXPECT_EQ(PerturbationNoiseSeed(&seed), 1);
  return seed;
}

const int32_t kSizes[][2] = {{1, 1}, {2, 3}, {37, 37}, {64, 21}, {21, 64}, {130, 130}};

}  // namespace

// Signal to noise of the transform against a double-precision direct sum, as fast transforms are
// usually judged: single-precision storage keeps it far above 100 dB at these sizes.
TEST(InverseFourier, MatchesTheDirectSum) {
  std::mt19937 rng(5);
  std::uniform_real_distribution<float> value(-1.0f, 1.0f);
  for (int32_t n : {1, 2, 4, 8, 16, 32}) {
    std::vector<float> data(2 * n * n);
    for (float& v : data) v = value(rng);
    const std::vector<float> input = data;
    InverseFourier2D(data.data(), n);
    double signal = 0, noise = 0;
    for (int r = 0; r < n; ++r)
      for (int c = 0; c < n; ++c) {
        std::complex<double> sum = 0;
        for (int k = 0; k < n; ++k)
          for (int l = 0; l < n; ++l)
            sum += std::complex<double>(input[2 * (k * n + l)], input[2 * (k * n + l) + 1]) *
                   std::polar(1.0, -2 * 3.141592653589793 * ((r * k + c * l) % n) / n);
        const std::complex<double> got(data[2 * (r * n + c)], data[2 * (r * n + c) + 1]);
        signal += std::norm(sum);
        noise += std::norm(sum - got);
      }
    EXPECT_GT(10 * std::log10(signal / std::max(noise, 1e-300)), 100.0) << n;
  }
}

TEST(TextureGenerators, MatchTheReferencesOnRandomRecords) {
  const uint32_t noiseSeed = NoiseSeed();
  std::mt19937 rng(21);
  for (const auto& size : kSizes) {
    for (int32_t type = 0; type < kTextureTypeCount; ++type) {
      const TextureItem item = RandomTextureItem(rng, type, size[0], size[1]);
      ScopedBlock fast(GenerateTexture(&item));
      ScopedBlock plain(type < kTextureCraters    ? RefFractal(&item, type + 1)
                        : type == kTextureCraters ? RefCraters(&item)
                                                  : RefPerturbation(&item, noiseSeed));
      ASSERT_NE(fast.handle, nullptr) << type << " " << size[0] << "x" << size[1];
      EXPECT_TRUE(SameBlocks(fast.handle, plain.handle))
          << "type " << type << " " << size[0] << "x" << size[1] << " mesh " << item.MatrixSize;
    }
  }
}

// The first Perturbation of the process fixes the noise: later seeds change only the bubbles.
TEST(TextureGenerators, PerturbationNoiseIsFixedOnce) {
  const uint32_t first = NoiseSeed();
  TextureItem item;
  InitTextureItem(&item);
  item.TextureType = kTexturePerturbation;
  item.rect[2] = item.rect[3] = 48;
  item.BubbleCount = 0;
  item.SeedValue[0] = first + 1;
  ScopedBlock a(GeneratePerturbation(&item));
  item.SeedValue[0] = first + 2;
  ScopedBlock b(GeneratePerturbation(&item));
  EXPECT_TRUE(SameBlocks(a.handle, b.handle));
  uint32_t seed = 0;
  ASSERT_EQ(PerturbationNoiseSeed(&seed), 1);
  EXPECT_EQ(seed, first);
  item.BubbleCount = 30;
  item.BubbleSize = 5;
  ScopedBlock c(GeneratePerturbation(&item));
  EXPECT_FALSE(SameBlocks(a.handle, c.handle)) << "bubbles follow the seed";
}

// The mesh is the power of two at or above MatrixSize; below 32 it would be read past and fails.
TEST(TextureGenerators, FractalMeshRule) {
  TextureItem item;
  InitTextureItem(&item);
  item.rect[2] = item.rect[3] = 40;
  item.MatrixSize = 100;
  ScopedBlock a(GenerateFractal2(&item));
  item.MatrixSize = 128;
  ScopedBlock b(GenerateFractal2(&item));
  item.MatrixSize = 64;
  ScopedBlock c(GenerateFractal2(&item));
  EXPECT_TRUE(SameBlocks(a.handle, b.handle));
  EXPECT_FALSE(SameBlocks(a.handle, c.handle));
  for (int32_t size : {-1, 0, 16, kMaxFractalMesh + 1}) {
    item.MatrixSize = size;
    EXPECT_EQ(GenerateFractal2(&item), nullptr) << size;
  }
  item.MatrixSize = 17;
  ScopedBlock d(GenerateFractal2(&item));
  EXPECT_NE(d.handle, nullptr);
}

TEST(TextureGenerators, FailCleanlyWhenMemoryFails) {
  NoiseSeed();
  for (int32_t type = 0; type < kTextureTypeCount; ++type) {
    TextureItem item;
    InitTextureItem(&item);
    item.TextureType = type;
    item.rect[2] = 24;
    item.rect[3] = 16;
    item.CreaterCount = 20;
    EXPECT_TRUE(SweepAllocationFailures([&] {
      ScopedBlock image(GenerateTexture(&item));
      return image.handle != nullptr;
    })) << type;
  }
}
