// The octree quantiser: exact-count boundaries, the tree path's averages and order, the product
// against the reference on random frame lists, refusals and allocation failures.
#include "imaging/octree_quantiser.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "shell/packed_dib.h"
#include "tests/support/alloc_sweep.h"
#include "tests/support/imaging_reference.h"

namespace {

using Palette = std::vector<uint8_t>;

// Pictures and a FrameList over them; the pictures are freed with it.
struct Frames {
  std::vector<MovableHandle> images;
  ~Frames() {
    for (MovableHandle h : images) MovableFree(h);
  }
  void Add(int32_t w, int32_t h, const std::vector<uint32_t>& pixels) {
    images.push_back(MakeImage24(w, h, pixels.data()));
  }
  // Quantises; the palette's first `n` entries are returned.
  Palette Quantise(int32_t* request, int n, int32_t* result = nullptr) const {
    FrameListView list(images.data(), static_cast<int32_t>(images.size()));
    Palette p(768, 0xAB);
    const int32_t r = QuantiseFrames(request, p.data(), &list.list);
    if (result) *result = r;
    return Palette(p.begin(), p.begin() + n * 3);
  }
};

TEST(QuantiseFrames, EmptyListSolidFrameAndRequestZero) {
  int32_t request = 256, result = 0;
  EXPECT_EQ(Frames().Quantise(&request, 256, &result), Palette(768, 0));
  EXPECT_EQ(result, 1);
  EXPECT_EQ(request, 0);

  Frames solid;
  solid.Add(3, 2, std::vector<uint32_t>(6, 0x405060));
  request = 256;
  EXPECT_EQ(solid.Quantise(&request, 2), Palette({0x60, 0x50, 0x40, 0, 0, 0}));
  EXPECT_EQ(request, 1);
  // A request of 0 goes through the tree, whose one leaf averages back to the colour.
  request = 0;
  EXPECT_EQ(solid.Quantise(&request, 1), Palette({0x60, 0x50, 0x40}));
  EXPECT_EQ(request, 1);
}

TEST(QuantiseFrames, TargetStaysExactAndTargetPlusOneAverages) {
  // The exact list reads the top row first, although the tree takes rows bottom first.
  Frames f;
  f.Add(2, 2, {0x000001, 0x000002, 0x000003, 0x000001});
  f.Add(1, 1, {0x000004});
  int32_t request = 4;
  EXPECT_EQ(f.Quantise(&request, 5), Palette({1, 0, 0, 2, 0, 0, 3, 0, 0, 4, 0, 0, 0, 0, 0}));
  EXPECT_EQ(request, 4);
  // A request of 2 builds a tree of depth 2: black and 40 grey share a leaf and average to 20.
  Frames g;
  g.Add(3, 1, {0x000000, 0x282828, 0xFAFAFA});
  request = 2;
  EXPECT_EQ(g.Quantise(&request, 3), Palette({20, 20, 20, 250, 250, 250, 0, 0, 0}));
  EXPECT_EQ(request, 2);
}

TEST(QuantiseFrames, AFullListFollowedByAnyPixelReduces) {
  // 256 colours in distinct depth-5 cells, listed in reverse of the tree's order.
  std::vector<uint32_t> pixels;
  for (int32_t i = 255; i >= 0; --i)
    pixels.push_back((i & 7) << 5 | (i >> 3 & 7) << 13 | (i >> 6) << 22);
  // Past a full list every pixel counts, across frames: with a request of 300, 44 more pixels
  // make exactly 300 and keep the list; 45 go to the tree. A request of 256 reduces at once.
  const struct {
    int32_t extra, asked, found;
    Palette first;
  } cases[] = {{0, 256, 256, {224, 224, 192}},
               {1, 256, 256, {0, 0, 0}},
               {44, 300, 300, {224, 224, 192}},
               {45, 300, 256, {0, 0, 0}}};
  for (const auto& c : cases) {
    Frames f;
    f.Add(256, 1, pixels);
    if (c.extra) f.Add(c.extra, 1, std::vector<uint32_t>(c.extra, pixels[3]));
    int32_t request = c.asked;
    EXPECT_EQ(f.Quantise(&request, 1), c.first) << c.extra;
    EXPECT_EQ(request, c.found) << c.extra;
  }
}

TEST(QuantiseFrames, RefusesUnreadableFramesAndShortRecordArrays) {
  int32_t request = 16, result = -1;
  Frames eight;
  eight.images.push_back(CreatePackedDib(2, 2, nullptr, 8));
  eight.Quantise(&request, 0, &result);
  EXPECT_EQ(result, 0);
  Frames none;
  none.images.push_back(nullptr);
  none.Quantise(&request, 0, &result);
  EXPECT_EQ(result, 0);
  // A count beyond the records the array holds.
  Frames one;
  one.Add(1, 1, {0x123456});
  FrameListView list(one.images.data(), 1);
  list.list.count = 2;
  uint8_t p[768];
  EXPECT_EQ(QuantiseFrames(&request, p, &list.list), 0);
  EXPECT_EQ(QuantiseFrames(&request, p, nullptr), 0);
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
      // Half the pictures in few levels, so that runs and neighbours sharing cells are common.
      f.images.push_back(MakeRandomImage(rng, w, h, 24));
      if (round % 2) {
        ScopedLock lock(f.images.back());
        for (size_t k = 40; k < MovableSize(f.images.back()); ++k) lock.bytes[k] &= 0xE0;
      }
    }
    const int32_t asked = requests[round % 11];
    int32_t a = asked, b = asked;
    const Palette p = f.Quantise(&a, 256);
    Palette q(768);
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
  FrameListView list(f.images.data(), 2);
  EXPECT_TRUE(SweepAllocationFailures([&] {
    int32_t request = 200;
    uint8_t p[768];
    return static_cast<int>(QuantiseFrames(&request, p, &list.list) == 1);
  }));
}

}  // namespace

// Over 2^32 / 255 pixels of one colour: the leaf's channel totals pass 32 bits, and its average
// must still be that colour.
TEST(QuantiseFrames, LeafTotalsPastThirtyTwoBits) {
  const int32_t w = 4100, h = 4200;
  Frames f;
  f.images.push_back(CreatePackedDib(w, h, nullptr, 24));
  {
    ScopedLock lock(f.images[0]);
    ASSERT_TRUE(lock);
    for (int32_t y = 0; y < h; ++y) {
      uint8_t* row = DibBits(lock.bytes) + static_cast<size_t>(y) * DibStride(w, 24);
      for (int32_t x = 0; x < w; ++x) row[x * 3] = 253, row[x * 3 + 1] = 254, row[x * 3 + 2] = 255;
    }
  }
  int32_t request = 0;
  EXPECT_EQ(f.Quantise(&request, 1), (Palette{255, 254, 253}));
  EXPECT_EQ(request, 1);
}
