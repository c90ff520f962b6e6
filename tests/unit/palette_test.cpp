// Fixed palettes, the palette resources, colour matching and the luminance sort.
#include "imaging/palette.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "host/bmp_file.h"
#include "shell/packed_dib.h"
#include "tests/support/imaging_reference.h"

namespace {

using Rgb = std::vector<uint8_t>;

Rgb Triple(const uint8_t* palette, int i) {
  return {palette[i * 3], palette[i * 3 + 1], palette[i * 3 + 2]};
}

TEST(FixedPalette, CountsDepthsEntriesAndNumbersOutOfRange) {
  const int32_t colours[11] = {2, 16, 32, 64, 128, 216, 256, 256, 256, 8, 256};
  const int32_t depths[11] = {1, 4, 5, 6, 7, 8, 8, 8, 8, 3, 8};
  for (int32_t n = 0; n < 11; ++n) {
    int32_t bits = -1;
    EXPECT_EQ(BuildFixedPalette(nullptr, &bits, n), colours[n]) << n;
    EXPECT_EQ(bits, depths[n]) << n;
  }
  uint8_t six[768], ten[768];
  BuildFixedPalette(six, nullptr, 6);
  std::memset(ten, 0xAB, sizeof ten);
  BuildFixedPalette(ten, nullptr, 10);
  EXPECT_EQ(std::memcmp(six, ten, 768), 0);
  // Level sets and nesting (palettes 5 and 7 are compared whole with their resources below);
  // every palette clears past its count.
  const struct {
    int32_t number, entry;
    Rgb rgb;
  } entries[] = {{0, 1, {255, 255, 255}},   {0, 2, {0, 0, 0}},     {1, 8, {192, 192, 192}},
                 {1, 11, {255, 255, 0}},    {2, 1, {0, 0, 255}},   {2, 2, {0, 85, 0}},
                 {4, 12, {0, 108, 0}},      {5, 216, {0, 0, 0}},   {6, 12, {0, 108, 0}},
                 {6, 255, {255, 255, 255}},

                 {8, 200, {200, 200, 200}}, {9, 5, {255, 0, 255}}, {9, 8, {0, 0, 0}}};
  uint8_t p[768];
  for (const auto& e : entries) {
    std::memset(p, 0xAB, sizeof p);
    BuildFixedPalette(p, nullptr, e.number);
    EXPECT_EQ(Triple(p, e.entry), e.rgb) << e.number << " entry " << e.entry;
  }
}

TEST(FixedPalette, ResourcesHoldPalettesFiveAndSeven) {
  const struct {
    const char* file;
    int32_t number;
  } cases[] = {{"PALETTE216.bin", 5}, {"PALETTE256G.bin", 7}};
  for (const auto& c : cases) {
    const std::string path = GM5_SOURCE_ROOT;
    const std::vector<uint8_t> file = ReadWholeFile((path + "resources/" + c.file).c_str());
    ASSERT_EQ(file.size(), 853u) << c.file;
    EXPECT_EQ(std::memcmp(file.data(), "COBLRSRC", 8), 0);
    char description[65] = {};
    std::memcpy(description, file.data() + 8, 64);
    EXPECT_STREQ(description, "256 colour palette");
    EXPECT_EQ(file[72], 0);
    EXPECT_EQ(file[73] | file[74] << 8, 1);
    EXPECT_EQ(std::memcmp(file.data() + 75, "CMAP", 4), 0);
    EXPECT_EQ(file[79] | file[80] << 8 | file[81] << 16 | file[82] << 24, 1);
    EXPECT_EQ(file[83] | file[84] << 8, 768);
    uint8_t generated[768];
    BuildFixedPalette(generated, nullptr, c.number);
    EXPECT_EQ(std::memcmp(file.data() + 85, generated, 768), 0) << c.file;
  }
}

TEST(DibPalette, ReadsTheWholeTableAndRefusesTrueColour) {
  uint8_t p[768], back[768];
  BuildFixedPalette(p, nullptr, 1);
  MovableHandle four = CreatePackedDib(3, 2, p, 4);
  MovableHandle deep = CreatePackedDib(3, 2, nullptr, 24);
  {
    ScopedLock a(four), b(deep);
    EXPECT_EQ(ReadDibPalette(a.bytes, back), 16);
    EXPECT_EQ(std::memcmp(p, back, 768), 0);
    std::memset(back, 0xAB, sizeof back);
    EXPECT_EQ(ReadDibPalette(b.bytes, back), 0);
    EXPECT_EQ(std::count(back, back + 768, 0), 768);
  }
  MovableFree(four);
  MovableFree(deep);
}

TEST(NearestPaletteIndex, WeightsTiesAndCounts) {
  uint8_t p[768];
  BuildFixedPalette(p, nullptr, 1);
  EXPECT_EQ(NearestPaletteIndex(128, 128, 128, p, 16), 7);
  EXPECT_EQ(NearestPaletteIndex(90, 90, 90, p, 0), 0);
  // Equal offsets on one channel: green weighs most, then red, then blue.
  std::memset(p, 0, sizeof p);
  const uint8_t weighted[] = {100, 110, 100, 110, 100, 100, 100, 100, 110};
  std::memcpy(p, weighted, sizeof weighted);
  EXPECT_EQ(NearestPaletteIndex(100, 100, 100, p, 3), 2);
  p[8] = 100, p[3] = 100;  // entries 1 and 2 now both equal the colour: the first wins
  EXPECT_EQ(NearestPaletteIndex(100, 100, 100, p, 3), 1);
  // Duplicates at equal distance: the earlier index.
  const uint8_t dup[] = {0, 0, 0, 50, 50, 50, 50, 50, 50};
  std::memcpy(p, dup, sizeof dup);
  EXPECT_EQ(NearestPaletteIndex(60, 60, 60, p, 3), 1);
}

TEST(NearestPaletteIndex, MatchesTheTwoPassScan) {
  std::mt19937 rng(7);
  uint8_t p[768];
  for (int round = 0; round < 200; ++round) {
    const int32_t count = static_cast<int32_t>(rng() % 257);
    MakeRandomPalette(rng, p, count);
    for (int i = 0; i < 200; ++i) {
      const int32_t r = rng() % 256, g = rng() % 256, b = rng() % 256;
      ASSERT_EQ(NearestPaletteIndex(r, g, b, p, count), RefNearestPaletteIndex(r, g, b, p, count));
    }
  }
}

TEST(SortPaletteByLuminance, AscendingAndStable) {
  uint8_t p[768];
  BuildFixedPalette(p, nullptr, 1);
  SortPaletteByLuminance(p, 16);
  // (0, 0, 128) and (128, 0, 0) have keys 14 and 38; pure blue (0, 0, 255) has 28.
  EXPECT_EQ(Triple(p, 0), Rgb({0, 0, 0}));
  EXPECT_EQ(Triple(p, 1), Rgb({0, 0, 128}));
  EXPECT_EQ(Triple(p, 2), Rgb({0, 0, 255}));
  EXPECT_EQ(Triple(p, 15), Rgb({255, 255, 255}));
  // Equal keys keep their order: (3, 0, 0) and (0, 0, 9) both have key 0. A count of one
  // changes nothing.
  const uint8_t same[] = {9, 9, 9, 3, 0, 0, 0, 0, 9};
  std::memcpy(p, same, sizeof same);
  SortPaletteByLuminance(p, 1);
  EXPECT_EQ(Triple(p, 0), Rgb({9, 9, 9}));
  SortPaletteByLuminance(p, 3);
  EXPECT_EQ(std::vector<uint8_t>(p, p + 9), std::vector<uint8_t>({3, 0, 0, 0, 0, 9, 9, 9, 9}));
}

}  // namespace
