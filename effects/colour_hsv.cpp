// The HSV conversions, in double precision.
#include "effects/colour_hsv.h"

#include <algorithm>
#include <cmath>

HsvColour RgbToHsv(uint32_t colour) {
  const double r = (colour & 0xFF) / 255.0, g = ((colour >> 8) & 0xFF) / 255.0,
               b = ((colour >> 16) & 0xFF) / 255.0;
  const double v = std::max(r, std::max(g, b));
  double d = v - std::min(r, std::min(g, b));
  if (v == 0) return {-1.0, 0.0, 0.0};
  HsvColour hsv{0.0, d / v, v};
  if (d == 0) d = 1.0;
  double h;
  if (r == v)
    h = (g - b) / d;
  else if (g == v)
    h = (b - r) / d + 2;
  else
    h = (r - g) / d + 4;
  h *= 60;
  if (h < 0) h += 360;
  hsv.hue = h;
  return hsv;
}

namespace {

uint32_t Channel(double c) {
  const double scaled = c * 255;
  if (scaled <= 0) return 0;
  if (scaled >= 255) return 255;
  return static_cast<uint32_t>(scaled);
}

uint32_t Pack(double r, double g, double b) {
  return Channel(r) | Channel(g) << 8 | Channel(b) << 16;
}

}  // namespace

uint32_t HsvToRgb(double hue, double saturation, double value) {
  const double s = std::min(saturation, 1.0), v = std::min(value, 1.0);
  if (s == 0) return Pack(v, v, v);
  const double h = hue / 60;
  const double i = std::floor(h), f = h - i;
  const double p = (1 - s) * v, q = (1 - f * s) * v, t = (1 - (1 - f) * s) * v;
  switch (static_cast<int>(i)) {
    case 0:
      return Pack(v, t, p);
    case 1:
      return Pack(q, v, p);
    case 2:
      return Pack(p, v, t);
    case 3:
      return Pack(p, q, v);
    case 4:
      return Pack(t, p, v);
    default:
      return Pack(v, p, q);
  }
}
