// Hue, saturation and value for the shaded balls: a colour is turned into HSV, its value moved,
// and turned back. Colours are 0x00BBGGRR.
#pragma once

#include <cstdint>

struct HsvColour {
  double hue;         // degrees 0 to 360; -1 for black
  double saturation;  // 0 to 1
  double value;       // 0 to 1 from RgbToHsv; callers may push it outside
};

HsvColour RgbToHsv(uint32_t colour);
// Saturation and value above 1 count as 1; nothing limits them from below, so a value under 0
// gives channels that clamp to 0. Each channel is the product with 255, clamped and truncated.
uint32_t HsvToRgb(double hue, double saturation, double value);
