// Dithering, remapping and key replacement: small pictures with known results, the product against
// the plain reference on random input, and allocation-failure sweeps.
#include "imaging/dither.h"

#include "imaging/colour_matcher.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>

#include "imaging/palette.h"
#include "shell/packed_dib.h"
#include "tests/support/alloc_sweep.h"
#include "tests/support/imaging_reference.h"
#include "tests/support/test_images.h"

namespace {

std::vector<uint32_t> Pixels(MovableHandle image) {
  return ReadPicture(image).values;
}

const uint32_t kWhite = 0xFFFFFF;

TEST(DitherToPalette, ColourPathSpreadsUpwardAndOnlyDownInOneColumn) {
  // Bottom pixel 100 grey maps to black and sends 5/16 of its error up the column, which lifts
  // the top pixel from 100 to 131, nearer to white. Nothing else may reach it.
  const uint32_t grey = 0x646464;
  const uint32_t column[] = {grey, grey};
  Owned image(MakeImage24(1, 2, column));
  uint8_t palette[768];
  BuildFixedPalette(palette, nullptr, 0);
  Owned out(DitherToPalette(image.h, palette, 2, 2));
  ASSERT_TRUE(out.h);
  EXPECT_EQ(ReadPicture(out.h).bits, 4);
  EXPECT_EQ(Pixels(out.h), std::vector<uint32_t>({1, 0}));
  // The plain remap spreads nothing.
  Owned plain(RemapToPalette(image.h, palette, 2, 2));
  EXPECT_EQ(Pixels(plain.h), std::vector<uint32_t>({0, 0}));
}

TEST(DitherToPalette, RefusesOneBitAndBadTargets) {
  uint8_t palette[768];
  BuildFixedPalette(palette, nullptr, 0);
  Owned one(CreatePackedDib(4, 4, palette, 1));
  EXPECT_EQ(DitherToPalette(one.h, palette, 8, 2), nullptr);
  Owned deep(CreatePackedDib(4, 4, nullptr, 24));
  EXPECT_EQ(DitherToPalette(deep.h, palette, 0, 2), nullptr);
  EXPECT_EQ(DitherToPalette(deep.h, palette, 9, 2), nullptr);
  // A header that claims more rows than its block holds.
  {
    ScopedLock lock(deep.h);
    reinterpret_cast<BitmapInfoHeader*>(lock.bytes)->biHeight = 5000;
  }
  EXPECT_EQ(DitherToPalette(deep.h, palette, 8, 2), nullptr);
  EXPECT_EQ(RemapToPalette(deep.h, palette, 8, 2), nullptr);
}

TEST(DitherToPalette, BiLevelFlatGreyFollowsTheToneMap) {
  uint8_t palette[768];
  BuildFixedPalette(palette, nullptr, 0);
  std::vector<uint32_t> flat(5 * 3, 0x808080);
  Owned grey(MakeImage24(5, 3, flat.data()));
  // The key of this grey is 127, so low = high = middle = 127. The default map lifts 127 to 150:
  // every pixel is set.
  Owned lifted(DitherToPalette(grey.h, palette, 1, 2));
  EXPECT_EQ(ReadPicture(lifted.h).bits, 1);
  EXPECT_EQ(Pixels(lifted.h), std::vector<uint32_t>(15, 1));
  // An identity map leaves 127, which is not above the middle: every pixel is clear.
  Owned level(DitherToPalette(grey.h, palette, 1, 2, {0, 0, 0}));
  EXPECT_EQ(Pixels(level.h), std::vector<uint32_t>(15, 0));
  // White is capped at 254 by the map, below its own middle of 255.
  std::vector<uint32_t> white(5 * 3, kWhite);
  Owned bright(MakeImage24(5, 3, white.data()));
  Owned capped(DitherToPalette(bright.h, palette, 1, 2));
  EXPECT_EQ(Pixels(capped.h), std::vector<uint32_t>(15, 0));
  // A contrast of 128 makes an infinite step: the map jumps from 1 to 254.
  uint8_t map[256];
  BuildToneMap(map, 0, 128);
  EXPECT_EQ(map[0] * 1000 + map[1], 1254);
}

TEST(RemapToPalette, FastRemapExactOrLowerCorner) {
  auto remap = [](uint32_t colour, const std::vector<uint8_t>& entries, int32_t fast) {
    uint8_t palette[768] = {};
    std::copy(entries.begin(), entries.end(), palette);
    Owned image(MakeImage24(1, 1, &colour));
    Owned out(RemapToPalette(image.h, palette, 8, static_cast<int32_t>(entries.size() / 3),
                             {fast, 20, 20}));
    return Pixels(out.h);
  };
  const std::vector<uint8_t> withWhite = {0, 0, 0, 250, 250, 250, 255, 255, 255};
  EXPECT_EQ(remap(kWhite, withWhite, 0), std::vector<uint32_t>({2}));
  EXPECT_EQ(remap(kWhite, withWhite, 1), std::vector<uint32_t>({2}));
  // No exact entry: (253, 253, 253) is nearest to 254 grey, but its cell's corner (248, 248, 248)
  // is nearest to 244 grey.
  const std::vector<uint8_t> greys = {244, 244, 244, 254, 254, 254};
  EXPECT_EQ(remap(0xFDFDFD, greys, 0), std::vector<uint32_t>({1}));
  EXPECT_EQ(remap(0xFDFDFD, greys, 1), std::vector<uint32_t>({0}));
}

TEST(RemapToPalette, IndexedSourcesUseWhiteBlackAndAFullTranslation) {
  // 1-bit source: set bits take the white index, clear ones the black index.
  uint8_t palette[768] = {200, 0, 0, 255, 255, 255, 0, 0, 0};
  Owned bits(CreatePackedDib(3, 1, nullptr, 1));
  {
    ScopedLock lock(bits.h);
    WriteDibPixel(lock.bytes, 1, 0, 1);
  }
  Owned mapped(RemapToPalette(bits.h, palette, 8, 3));
  EXPECT_EQ(Pixels(mapped.h), std::vector<uint32_t>({2, 1, 2}));
  Owned same(RemapToPalette(bits.h, palette, 1, 3));
  EXPECT_EQ(Pixels(same.h), std::vector<uint32_t>({0, 1, 0}));
  // An 8-bit source entry of dark grey with a 2-colour palette and a 5-bit target: the zeroed
  // entries past the count are searched too, and black at index 2 wins over the red.
  uint8_t two[768] = {200, 0, 0, 255, 255, 255};
  uint8_t table[768] = {20, 20, 20};
  Owned indexed(CreatePackedDib(2, 1, table, 8));
  Owned translated(RemapToPalette(indexed.h, two, 5, 2));
  EXPECT_EQ(Pixels(translated.h), std::vector<uint32_t>({2, 2}));
}

TEST(ReplaceKeyColour, PutsTheIndexWhereTheKeyStood) {
  uint8_t palette[768];
  BuildFixedPalette(palette, nullptr, 1);
  const uint32_t colours[] = {0x0000FF, 0x123456, 0x0000FF, 0x00FF00};
  Owned unreduced(MakeImage24(2, 2, colours));
  Owned indexed(RemapToPalette(unreduced.h, palette, 4, 16));
  Owned keyed(ReplaceKeyColour(indexed.h, unreduced.h, 0xFF0000FF, 15));
  ASSERT_TRUE(keyed.h);
  std::vector<uint32_t> expected = Pixels(indexed.h);
  expected[0] = expected[2] = 15;
  EXPECT_EQ(Pixels(keyed.h), expected);
  {
    ScopedLock a(indexed.h), b(keyed.h);
    EXPECT_EQ(std::memcmp(a.bytes + 40, b.bytes + 40, 64), 0);
  }
  Owned other(CreatePackedDib(3, 2, nullptr, 24));
  EXPECT_EQ(ReplaceKeyColour(indexed.h, other.h, 0xFF, 1), nullptr);
}

// Product against reference on every source depth, awkward widths and random palettes.
TEST(DitherAndRemap, MatchTheReferenceByteForByte) {
  std::mt19937 rng(1234);
  const int32_t widths[] = {1, 2, 3, 4, 5, 8, 41};
  const int32_t depths[] = {1, 4, 8, 24};
  uint8_t palette[768];
  for (int32_t width : widths)
    for (int32_t depth : depths) {
      for (int round = 0; round < 4; ++round) {
        const int32_t height = 1 + static_cast<int32_t>(rng() % 6);
        const int32_t bits = 1 + static_cast<int32_t>(rng() % 8);
        const int32_t count = static_cast<int32_t>(rng() % 257);
        MakeRandomPalette(rng, palette, count);
        const RemapSettings settings = {static_cast<int32_t>(rng() % 2),
                                        static_cast<int32_t>(rng() % 60),
                                        static_cast<int32_t>(rng() % 60)};
        Owned image(MakeRandomImage(rng, width, height, depth));
        Owned d(DitherToPalette(image.h, palette, bits, count, settings));
        Owned dr(RefDitherToPalette(image.h, palette, bits, count, settings));
        EXPECT_TRUE(depth == 1 ? !d.h && !dr.h : SameBlocks(d.h, dr.h))
            << "dither " << width << "x" << height << " depth " << depth << " bits " << bits;
        Owned r(RemapToPalette(image.h, palette, bits, count, settings));
        Owned rr(RefRemapToPalette(image.h, palette, bits, count, settings));
        EXPECT_TRUE(SameBlocks(r.h, rr.h))
            << "remap " << width << "x" << height << " depth " << depth << " bits " << bits;
      }
    }
  // A larger frame with many colours exercises the search's cell lists and their growth.
  for (int32_t fast = 0; fast < 2; ++fast) {
    MakeRandomPalette(rng, palette, 256);
    Owned image(MakeRandomImage(rng, 97, 61, 24));
    Owned d(DitherToPalette(image.h, palette, 8, 256, {fast, 20, 20}));
    Owned dr(RefDitherToPalette(image.h, palette, 8, 256, {fast, 20, 20}));
    EXPECT_TRUE(SameBlocks(d.h, dr.h));
  }
}

TEST(DitherAndRemap, ASharedMatcherServesOnlyItsOwnPalette) {
  std::mt19937 rng(77);
  uint8_t palette[768], other[768];
  MakeRandomPalette(rng, palette, 256);
  MakeRandomPalette(rng, other, 256);
  ColourMatcher shared;
  ASSERT_TRUE(OpenColourMatcher(&shared, palette, 256));
  EXPECT_FALSE(ColourMatcherFits(&shared, palette, 255));
  for (int frame = 0; frame < 4; ++frame) {
    Owned image(MakeRandomImage(rng, 37, 23, 24));
    const RemapSettings s = {frame % 2, 20, 20};
    Owned alone(DitherToPalette(image.h, palette, 8, 256, s));
    Owned together(DitherToPalette(image.h, palette, 8, 256, s, &shared));
    Owned elsewhere(DitherToPalette(image.h, other, 8, 256, s, &shared));
    Owned otherAlone(DitherToPalette(image.h, other, 8, 256, s));
    Owned remapAlone(RemapToPalette(image.h, palette, 8, 256, s));
    Owned remapTogether(RemapToPalette(image.h, palette, 8, 256, s, &shared));
    EXPECT_TRUE(SameBlocks(alone.h, together.h) && SameBlocks(elsewhere.h, otherAlone.h) &&
                SameBlocks(remapAlone.h, remapTogether.h))
        << frame;
  }
}

// The matcher's vector loops against their plain loops, which serve processors without SSE2:
// cell distances for palettes of every size (so every padding), and list scans over random blocks.
TEST(ColourMatcher, VectorLoopsMatchThePlainOnes) {
  std::mt19937 rng(31);
  uint8_t palette[768];
  alignas(16) int32_t fast[256], plain[256];
  for (int32_t count = 1; count <= 256; count += 1 + count / 8) {
    MakeRandomPalette(rng, palette, count);
    ColourMatcher m;
    ASSERT_TRUE(OpenColourMatcher(&m, palette, count));
    for (int cell = 0; cell < 40; ++cell) {
      const int32_t r = rng() % 32 * 8, g = rng() % 32 * 8, b = rng() % 32 * 8;
      ASSERT_EQ(CellDistances(&m, r, g, b, fast), CellDistancesPlain(&m, r, g, b, plain));
      ASSERT_TRUE(std::equal(fast, fast + count, plain)) << count;
    }
  }
  uint8_t blocks[4 * 32];
  for (int round = 0; round < 2000; ++round) {
    for (uint8_t& byte : blocks) byte = static_cast<uint8_t>(rng());
    const uint32_t n = 1 + rng() % 4;
    const int32_t r = rng() % 256, g = rng() % 256, b = rng() % 256;
    ASSERT_EQ(ScanCellList(blocks, n, r, g, b), ScanCellListPlain(blocks, n, r, g, b)) << round;
  }
}

TEST(DitherAndRemap, AllocationFailuresLeakNothing) {
  std::mt19937 rng(99);
  uint8_t palette[768];
  MakeRandomPalette(rng, palette, 200);
  Owned image(MakeRandomImage(rng, 33, 40, 24));
  Owned indexed(MakeRandomImage(rng, 33, 40, 8));
  for (int32_t bits : {1, 4, 8}) {
    EXPECT_TRUE(SweepAllocationFailures([&] {
      MovableHandle out = DitherToPalette(image.h, palette, bits, 200, {bits == 4, 20, 20});
      MovableFree(out);
      return out != nullptr;
    }));
  }
  EXPECT_TRUE(SweepAllocationFailures([&] {
    MovableHandle out = RemapToPalette(image.h, palette, 8, 200, {1, 20, 20});
    MovableFree(out);
    return out != nullptr;
  }));
  EXPECT_TRUE(SweepAllocationFailures([&] {
    MovableHandle out = RemapToPalette(indexed.h, palette, 4, 200);
    MovableHandle keyed = out ? ReplaceKeyColour(out, image.h, 0, 3) : nullptr;
    MovableFree(out);
    MovableFree(keyed);
    return keyed != nullptr;
  }));
}

}  // namespace
