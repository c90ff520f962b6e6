#include "effects/colour_hsv.h"

#include <gtest/gtest.h>

#include <cstdlib>

TEST(ColourHsv, PrimariesGreysAndTheHueWrap) {
  struct Case {
    uint32_t colour;  // 0x00BBGGRR
    double hue, saturation, value;
  } cases[] = {
      {0x0000FF, 0, 1, 1},        {0x00FF00, 120, 1, 1},       {0xFF0000, 240, 1, 1},
      {0x00FFFF, 60, 1, 1},       {0xFFFF00, 180, 1, 1},       {0xFF00FF, 300, 1, 1},
      {0x000000, -1, 0, 0},       {0xFFFFFF, 0, 0, 1},         {0x808080, 0, 0, 128 / 255.0},
      {0x3300FF, 348, 1, 1},  // red over blue: (G - B) / d is negative and wraps past 360
      {0x663399, 330, 0.6666666666666666, 0.6},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.colour);
    const HsvColour hsv = RgbToHsv(c.colour);
    EXPECT_NEAR(hsv.hue, c.hue, 1e-9);
    EXPECT_NEAR(hsv.saturation, c.saturation, 1e-9);
    EXPECT_NEAR(hsv.value, c.value, 1e-9);
    if (c.colour != 0x808080 && c.colour != 0x663399) {
      EXPECT_EQ(HsvToRgb(c.hue, c.saturation, c.value), c.colour) << "exact on these";
    }
  }
  // Sectors beyond the sixth take the last one's order; saturation and value above 1 count as 1;
  // a value below 0 clamps every channel to 0.
  EXPECT_EQ(HsvToRgb(360, 1, 1), 0xFF00FFu);
  EXPECT_EQ(HsvToRgb(0, 3, 2), 0x0000FFu);
  EXPECT_EQ(HsvToRgb(120, 1, -0.5), 0u);
  EXPECT_EQ(HsvToRgb(-1, 0, 0.5), 0x7F7F7Fu);
}

TEST(ColourHsv, RoundTripLosesAtMostOneStepPerChannel) {
  for (uint32_t colour = 0; colour < 0x1000000; colour += 9973) {
    const HsvColour hsv = RgbToHsv(colour);
    const uint32_t back = HsvToRgb(hsv.hue, hsv.saturation, hsv.value);
    for (int shift = 0; shift < 24; shift += 8) {
      const int a = static_cast<int>((colour >> shift) & 0xFF);
      const int b = static_cast<int>((back >> shift) & 0xFF);
      ASSERT_LE(a - b, 1) << std::hex << colour;
      ASSERT_GE(a - b, 0) << std::hex << colour << " truncation never rounds up";
    }
  }
}
