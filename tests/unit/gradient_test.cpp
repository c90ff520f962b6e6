#include "materials/gradient.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "shell/packed_dib.h"
#include "tests/support/alloc_sweep.h"
#include "tests/support/test_images.h"

namespace {

std::vector<uint32_t> Table(const GradientSpec& spec, const FountainGradient* fountain, int count) {
  std::vector<uint32_t> entries;
  ScopedBlock block(GradientLookup(&spec, fountain, count));
  ScopedLock lock(block.handle);
  if (!lock) return entries;
  for (int i = 0; i < count; ++i) entries.push_back(GradientTableEntry(lock.bytes, i));
  EXPECT_EQ(GradientTableEntry(lock.bytes, count), 0u) << "past the end reads black";
  return entries;
}

GradientSpec TwoColours(uint32_t start, uint32_t end) {
  GradientSpec spec{};
  spec.startColour = start;
  spec.endColour = end;
  spec.midpoint = 50;
  spec.twoColour = 1;
  return spec;
}

int Channel(uint32_t colour, int shift) {
  return (colour >> shift) & 0xFF;
}

}  // namespace

TEST(FountainGradient, MarkerSetsResetTheListAndKeepTheFlags) {
  const uint32_t sets[][3] = {{7, 7, 0x20FF0000}, {1, 1, 0x80808080}, {0, 0, 0}};
  for (const auto& set : sets) {
    FountainGradient g;
    std::memset(&g, 0x5A, sizeof(g));
    g.flags = kFountainLooped;
    InitFountainGradient(&g, static_cast<int32_t>(set[0]));
    EXPECT_EQ(std::memcmp(g.magic, "COBLFOUN", 8), 0);
    EXPECT_EQ(g.version, 0x04000001u);
    EXPECT_EQ(g.size, 585u);
    EXPECT_EQ(g.flags, kFountainLooped);
    EXPECT_EQ(g.markerCount, set[1]);
    EXPECT_EQ(g.markers[0], set[2]);
    EXPECT_EQ(g.markers[set[1]], 0u) << "markers past the count are zeroed";
    EXPECT_EQ(g.name[0] | g.leftColour, 0u);
    EXPECT_EQ(g.rightColour, 0xFFFFFFFFu);
  }
}

TEST(GradientLookup, TwoColourTablesPadEndsAndForceTheirColours) {
  GradientSpec spec = TwoColours(0x000000, 0xFFC880);
  std::vector<uint32_t> t = Table(spec, nullptr, 256);
  ASSERT_EQ(t.size(), 256u);
  EXPECT_EQ(t[0], 0x000000u);
  EXPECT_EQ(t[128], 0x7F6440u);  // half of each channel, truncated
  EXPECT_EQ(t[255], 0xFFC880u);

  spec.edgePad = 45;  // 115 flat entries at each end, a body of 26
  t = Table(spec, nullptr, 256);
  ASSERT_EQ(t.size(), 256u);
  EXPECT_EQ(t[114], 0x000000u);
  EXPECT_EQ(t[115], 0x000000u);
  EXPECT_EQ(t[116], BlendColours(0, 0xFFC880, 1.0 / 26));
  EXPECT_EQ(t[140], BlendColours(0, 0xFFC880, 25.0 / 26));
  EXPECT_EQ(t[141], 0xFFC880u);

  // With a midpoint the table comes from a marker strip, and still starts and ends exactly.
  spec = TwoColours(0x102030, 0xF0E0D0);
  spec.midpoint = 20;
  t = Table(spec, nullptr, 100);
  ASSERT_EQ(t.size(), 100u);
  EXPECT_EQ(t.front(), 0x102030u);
  EXPECT_EQ(t.back(), 0xF0E0D0u);
  // The middle colour (0x808080) is reached near a fifth of the way, not at the half.
  int nearest = 0;
  for (int i = 0; i < 100; ++i)
    if (std::abs(Channel(t[i], 8) - 0x80) < std::abs(Channel(t[nearest], 8) - 0x80)) nearest = i;
  EXPECT_NEAR(nearest, 20, 2);
}

TEST(GradientLookup, MultiColourTablesFollowTheMarkersWithoutForcedEnds) {
  GradientSpec spec = TwoColours(0x111111, 0x222222);
  spec.twoColour = 0;
  FountainGradient g{};
  InitFountainGradient(&g, 0);
  g.leftColour = 0x0000FF;
  g.rightColour = 0xFF0000;
  const std::vector<uint32_t> t = Table(spec, &g, 64);
  ASSERT_EQ(t.size(), 64u);
  EXPECT_GE(Channel(t.front(), 0), 0xF0) << "red, not the two-colour start";
  EXPECT_GE(Channel(t.back(), 16), 0xF0);
  EXPECT_EQ(GradientLookup(&spec, nullptr, 64), nullptr) << "the marker list is required";
}

TEST(FountainStrip, SegmentsStepLoopAndStartAtAMarkerOnZero) {
  FountainGradient g{};
  InitFountainGradient(&g, 0);
  g.leftColour = 0x000000;
  g.rightColour = 0xFFFFFFFF;  // the top byte is ignored
  PictureValues p = TakePicture(FountainStrip(&g, 200, 2));
  ASSERT_EQ(p.width, 200);
  EXPECT_LE(Channel(p.At(0, 0), 0), 8);
  EXPECT_GE(Channel(p.At(199, 1), 0), 0xF7);
  EXPECT_EQ(p.At(199, 1) >> 24, 0u);

  g.flags = kFountainLooped;  // back to black at the end
  p = TakePicture(FountainStrip(&g, 200, 1));
  EXPECT_LE(Channel(p.At(199, 0), 0), 8);

  // A marker on 0 replaces the left colour; two markers on one position make a hard step.
  g.flags = 0;
  g.markerCount = 3;
  g.markers[0] = 0x00 << 24 | 0x0000FF;
  g.markers[1] = 0x80u << 24 | 0x0000FF;
  g.markers[2] = 0x80u << 24 | 0x00FF00;
  g.rightColour = 0x00FF00;
  p = TakePicture(FountainStrip(&g, 255, 1));
  EXPECT_EQ(p.At(0, 0), 0x0000FFu);
  EXPECT_EQ(p.At(127, 0), 0x0000FFu);
  EXPECT_EQ(p.At(128, 0), 0x00FF00u);
  EXPECT_EQ(p.At(254, 0), 0x00FF00u);
}

TEST(LinearGradient, BandsFollowTheTableAndTheRotation) {
  // Unrotated, with 256 rows of bands over height + 4, row r is band r + 2.
  const GradientSpec spec = TwoColours(0x000000, 0xFFFFFF);
  const std::vector<uint32_t> t = Table(spec, nullptr, 256);
  PictureValues p = TakePicture(MakeGradientImage(3, 252, &spec, nullptr));
  ASSERT_EQ(p.height, 252);
  ASSERT_EQ(p.bits, 24);
  for (int y = 0; y < 252; ++y)
    for (int x = 0; x < 3; ++x) ASSERT_EQ(p.At(x, y), t[y + 2]) << x << "," << y;

  // Plain mode runs the other way: the top shows `second`.
  p = TakePicture(MakeRampImage(0x0000FF, 0xFF0000, 3, 252, 0, 0, 0, 0));
  EXPECT_EQ(p.At(1, 0), BlendColours(0xFF0000, 0x0000FF, 2 / 256.0));

  // Rotated bands overlap and leave no pixel unpainted (the surface starts black).
  for (int rotation : {30, 45, 117, -200, 333}) {
    p = TakePicture(MakeRampImage(0x204060, 0x604020, 41, 29, 0, 0, rotation, 0));
    ASSERT_EQ(p.width, 41);
    for (uint32_t v : p.values) ASSERT_GE(Channel(v, 8), 0x40) << rotation;
  }
}

TEST(ConicalGradient, AnglesMirrorAroundTheCentre) {
  const uint32_t a = 0x000000, b = 0xFFFFFF, half = BlendColours(a, b, 0.5);
  PictureValues p = TakePicture(MakeRampImage(a, b, 9, 9, 0, 0, 0, kGradientConical));
  ASSERT_EQ(p.width, 9);
  EXPECT_EQ(p.At(8, 4), b);  // right of the centre
  EXPECT_EQ(p.At(0, 4), a);  // left of it
  EXPECT_EQ(p.At(4, 0), half);
  EXPECT_EQ(p.At(4, 8), half);
  p = TakePicture(MakeRampImage(a, b, 9, 9, 0, 0, 180, kGradientConical));
  EXPECT_EQ(p.At(8, 4), a);
  EXPECT_EQ(p.At(0, 4), b);
  // A positive centreY moves the centre up: row 2 of 8 is now its row.
  p = TakePicture(MakeRampImage(a, b, 8, 8, 0, 25, 0, kGradientConical));
  EXPECT_EQ(p.At(7, 2), b);
  EXPECT_EQ(p.At(0, 2), a);
}

TEST(ShrinkingShapes, BackgroundDriftAndTheEmptyCase) {
  // One pixel: no shape at all, only the background.
  EXPECT_EQ(
      TakePicture(MakeRampImage(0x123456, 0xFFFFFF, 1, 1, 0, 0, 0, kGradientElliptical)).At(0, 0),
      0x123456u);
  GradientSpec spec = TwoColours(0x404040, 0xC0C0C0);
  spec.type = kGradientRectangular;
  EXPECT_EQ(TakePicture(MakeGradientImage(1, 1, &spec, nullptr)).At(0, 0), 0u)
      << "empty table: black";

  // The innermost shape lies off centre by centreX percent; the brightest plateau is a few pixels
  // wide and the first of it is taken.
  for (int type : {kGradientElliptical, kGradientRectangular}) {
    int brightest[3];
    const int centres[3] = {-40, 0, 40};
    for (int k = 0; k < 3; ++k) {
      PictureValues p =
          TakePicture(MakeRampImage(0x000000, 0xFFFFFF, 60, 60, centres[k], 0, 0, type));
      ASSERT_EQ(p.width, 60);
      brightest[k] = 0;
      for (int x = 0; x < 60; ++x)
        if (p.At(x, 30) > p.At(brightest[k], 30)) brightest[k] = x;
    }
    EXPECT_LT(brightest[0], brightest[1] - 5) << type;
    EXPECT_NEAR(brightest[1], 30, 4) << type;
    EXPECT_GT(brightest[2], brightest[1] + 5) << type;
  }
}

TEST(Gradients, FreeEverythingWhenMemoryFails) {
  FountainGradient g{};
  InitFountainGradient(&g, 2);
  for (int type = 0; type < 4; ++type) {
    GradientSpec spec = TwoColours(0x102030, 0x405060);
    spec.type = type;
    spec.twoColour = type % 2;  // Conical and Rectangular use the two colours
    spec.midpoint = 30;
    EXPECT_TRUE(SweepAllocationFailures([&] {
      MovableHandle image = MakeGradientImage(12, 7, &spec, &g);
      MovableFree(image);
      return image != nullptr;
    })) << type;
  }
}
