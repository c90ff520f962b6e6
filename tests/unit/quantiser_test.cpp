// The octree quantiser: exact-count boundaries, the tree path's averages and order, the product
// against the reference on random frame sets, and allocation failures.
#include "imaging/octree_quantiser.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <vector>

#include "shell/packed_dib.h"
#include "tests/support/alloc_sweep.h"
#include "tests/support/imaging_reference.h"

namespace {

struct Frames {
  std::vector<MovableHandle> images;
  ~Frames() {
    for (MovableHandle h : images) MovableFree(h);
  }
  void Add(int32_t w, int32_t h, const std::vector<uint32_t>& pixels) {
    images.push_back(MakeImage24(w, h, pixels.data()));
  }
};

using Palette = std::vector<uint8_t>;

Palette Quantise(const Frames& f, int32_t* request, int32_t* result = nullptr) {
  Palette p(768, 0xAB);
  const int32_t r =
      QuantiseFrames(request, p.data(), f.images.data(), static_cast<int32_t>(f.images.size()));
  if (result) *result = r;
  return p;
}

Palette Head(const Palette& p, int n) {
  return Palette(p.begin(), p.begin() + n * 3);
}

TEST(QuantiseFrames, EmptyListAndSolidFrame) {
  Frames none;
  int32_t request = 256, result = 0;
  Palette p = Quantise(none, &request, &result);
  EXPECT_EQ(result, 1);
  EXPECT_EQ(request, 0);
  EXPECT_EQ(p, Palette(768, 0));

  Frames solid;
  solid.Add(3, 2, std::vector<uint32_t>(6, 0x405060));
  request = 256;
  p = Quantise(solid, &request);
  EXPECT_EQ(request, 1);
  EXPECT_EQ(Head(p, 2), Palette({0x60, 0x50, 0x40, 0, 0, 0}));
  // A request of 0 goes through the tree, whose one leaf averages back to the colour.
  request = 0;
  p = Quantise(solid, &request);
  EXPECT_EQ(request, 1);
  EXPECT_EQ(Head(p, 1), Palette({0x60, 0x50, 0x40}));
}

TEST(QuantiseFrames, TargetColoursStayExactInOrderOfFirstAppearance) {
  // The exact list reads the top row first, although the tree takes rows bottom first.
  Frames f;
  f.Add(2, 2, {0x000001, 0x000002, 0x000003, 0x000001});
  f.Add(1, 1, {0x000004});
  int32_t request = 4;
  Palette p = Quantise(f, &request);
  EXPECT_EQ(request, 4);
  EXPECT_EQ(Head(p, 5), Palette({1, 0, 0, 2, 0, 0, 3, 0, 0, 4, 0, 0, 0, 0, 0}));
}

TEST(QuantiseFrames, OneColourOverTheRequestGoesThroughTheTree) {
  // A request of 2 builds a tree of depth 2: black and 40 grey share a leaf and average to 20.
  Frames f;
  f.Add(3, 1, {0x000000, 0x282828, 0xFAFAFA});
  int32_t request = 2;
  Palette p = Quantise(f, &request);
  EXPECT_EQ(request, 2);
  EXPECT_EQ(Head(p, 3), Palette({20, 20, 20, 250, 250, 250, 0, 0, 0}));
}

TEST(QuantiseFrames, AFullListFollowedByAnyPixelReduces) {
  // 256 colours in distinct depth-5 cells, listed in reverse of the tree's order.
  std::vector<uint32_t> pixels;
  for (int32_t i = 255; i >= 0; --i) {
    const uint32_t r = (i & 7) << 5, g = (i >> 3 & 7) << 5, b = (i >> 6) << 6;
    pixels.push_back(r | g << 8 | b << 16);
  }
  Frames exact;
  exact.Add(256, 1, pixels);
  int32_t request = 256;
  Palette p = Quantise(exact, &request);
  EXPECT_EQ(request, 256);
  EXPECT_EQ(Head(p, 1), Palette({224, 224, 192}));
  pixels.push_back(pixels[0]);  // one repeated pixel more makes the count "many"
  Frames many;
  many.Add(257, 1, pixels);
  request = 256;
  p = Quantise(many, &request);
  EXPECT_EQ(request, 256);
  EXPECT_EQ(Head(p, 1), Palette({0, 0, 0}));
  // Past a full list every pixel counts, across frames: 256 colours and 44 more pixels make 300,
  // which a request of 300 takes as the list with that count; one pixel more goes to the tree.
  for (int32_t extra : {44, 45}) {
    Frames split;
    split.Add(256, 1, std::vector<uint32_t>(pixels.begin(), pixels.begin() + 256));
    split.Add(extra, 1, std::vector<uint32_t>(extra, pixels[3]));
    request = 300;
    p = Quantise(split, &request);
    EXPECT_EQ(request, extra == 44 ? 300 : 256);
    EXPECT_EQ(Head(p, 1), extra == 44 ? Palette({224, 224, 192}) : Palette({0, 0, 0})) << extra;
  }
}

TEST(QuantiseFrames, RefusesUnreadableFrames) {
  Frames f;
  f.images.push_back(CreatePackedDib(2, 2, nullptr, 8));
  int32_t request = 16, result = -1;
  Quantise(f, &request, &result);
  EXPECT_EQ(result, 0);
  Frames g;
  g.images.push_back(nullptr);
  Quantise(g, &request, &result);
  EXPECT_EQ(result, 0);
}

TEST(QuantiseFrames, MatchesTheReference) {
  std::mt19937 rng(42);
  const int32_t requests[] = {0, 1, 2, 3, 16, 17, 64, 255, 256, 300, -1};
  for (int round = 0; round < 44; ++round) {
    Frames f;
    const int frames = 1 + static_cast<int>(rng() % 3);
    for (int i = 0; i < frames; ++i) {
      const int32_t w = 1 + static_cast<int32_t>(rng() % 40),
                    h = 1 + static_cast<int32_t>(rng() % 30);
      f.images.push_back(MakeRandomImage(rng, w, h, 24));
    }
    const int32_t asked = requests[round % 11];
    int32_t a = asked, b = asked;
    Palette p(768), q(768);
    ASSERT_EQ(QuantiseFrames(&a, p.data(), f.images.data(), frames), 1);
    ASSERT_EQ(RefQuantiseFrames(&b, q.data(), f.images.data(), frames), 1);
    EXPECT_EQ(a, b) << "request " << asked;
    EXPECT_EQ(p, q) << "request " << asked;
  }
}

TEST(QuantiseFrames, AllocationFailuresLeakNothing) {
  std::mt19937 rng(5);
  Frames f;
  f.images.push_back(MakeRandomImage(rng, 120, 90, 24));  // enough cells for several slabs
  f.images.push_back(MakeRandomImage(rng, 7, 3, 24));
  EXPECT_TRUE(SweepAllocationFailures([&] {
    int32_t request = 200;
    uint8_t p[768];
    return static_cast<int>(QuantiseFrames(&request, p, f.images.data(), 2) == 1);
  }));
}

}  // namespace
