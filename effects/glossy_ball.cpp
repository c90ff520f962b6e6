#include "effects/glossy_ball.h"

#include <algorithm>
#include <cmath>

#include "effects/wrapping_stamp.h"
#include "imaging/resampler.h"
#include "materials/gradient.h"
#include "platform/surface.h"
#include "shell/packed_dib.h"
#include "text/text_mask.h"

namespace {

constexpr double kPi = 3.14159265358979323846;

uint32_t Mix(uint32_t rim, uint32_t body, uint32_t k) {
  uint32_t out = 0;
  for (int shift = 0; shift < 24; shift += 8)
    out |= ((((rim >> shift) & 0xFF) * (255 - k) + ((body >> shift) & 0xFF) * k) / 255) << shift;
  return out;
}

// Lays the grey glint on the drawn ball: out = (old * (255 - m)) / 255 + m, wrapping at 8 bits.
void LayGlint(void* picture, const void* glint, int32_t left, int32_t top) {
  const BitmapInfoHeader* g = static_cast<const BitmapInfoHeader*>(glint);
  for (int32_t y = 0; y < g->biHeight; ++y)
    for (int32_t x = 0; x < g->biWidth; ++x) {
      const uint32_t old = ReadDibPixel(picture, left + x, top + y);
      if (old == kPixelOutside) continue;
      const uint32_t m = (ReadDibPixel(glint, x, y) >> 16) & 0xFF;
      uint32_t out = 0;
      for (int shift = 0; shift < 24; shift += 8)
        out |= ((((old >> shift) & 0xFF) * (255 - m) / 255 + m) & 0xFF) << shift;
      WriteDibPixel(picture, left + x, top + y, out);
    }
}

}  // namespace

MovableHandle DrawGlossyBall(int32_t width, int32_t height, int32_t scale, const BallPaint* paint) {
  const int32_t w = scale * width, h = scale * height, s = std::min(width, height);
  RenderSurface surface;
  if (!CreateRenderSurface(w, h, &surface)) return nullptr;
  const SurfaceRect whole = {0, 0, w, h};
  SurfaceFillRect(&surface, &whole, paint->background);
  const int32_t n = (2 * scale * s) / 3;
  for (int32_t i = 0; i < n; ++i) {
    const double angle = (static_cast<float>(i) / static_cast<float>(n)) * 90.0 * kPi / 180.0;
    const uint32_t k = static_cast<uint32_t>(std::sin(angle) * 255.0);
    const uint32_t colour = Mix(paint->rim, paint->body, k);
    const SurfacePaint p = {static_cast<int32_t>(colour), static_cast<int32_t>(colour), 2 * scale};
    const SurfaceRect box = {i, i / 2, w - i, h - i};
    SurfaceEllipse(&surface, &box, &p);
  }
  ReleaseRenderSurface(&surface, kSurfaceKeepImage);
  ScopedBlock drawn(surface.handle);
  if (!drawn.handle) return nullptr;
  if (paint->glare > 0) {
    const uint32_t g = static_cast<uint32_t>(paint->glare & 255);
    const int32_t side = std::max((2 * scale * s) / 5, 8);
    ScopedBlock glint(
        MakeRampImage(0, g | g << 8 | g << 16, side, side, 0, 0, 0, kGradientElliptical));
    ScopedLock glintBits(glint.handle);
    ScopedLock picture(drawn.handle);
    if (!glintBits || !picture) return nullptr;
    LayGlint(picture.bytes, glintBits.bytes, (scale * s) / 3, (scale * s) / 6);
  }
  const double percent = 100.0 / scale;
  ScopedBlock colours(ResampleByPercent(drawn.handle, percent, percent));
  if (!colours.handle) return nullptr;

  RenderSurface disc;
  if (!CreateRenderSurface(w, h, &disc)) return nullptr;
  const SurfacePaint white = {0xFFFFFF, kSurfaceNone, 0};
  SurfaceEllipse(&disc, &whole, &white);
  ReleaseRenderSurface(&disc, kSurfaceKeepImage);
  ScopedBlock discDrawn(disc.handle);
  if (!discDrawn.handle) return nullptr;
  ScopedBlock mask(ResampleByPercent(discDrawn.handle, percent, percent));
  if (!mask.handle) return nullptr;
  return CombineAlpha(colours.handle, mask.handle);
}

int StampBallWrapped(void* target, const void* ball, int32_t x, int32_t y, int32_t level) {
  const BitmapInfoHeader* t = static_cast<const BitmapInfoHeader*>(target);
  const BitmapInfoHeader* b = static_cast<const BitmapInfoHeader*>(ball);
  const int32_t tBits = t->biBitCount;
  if ((tBits != 24 && tBits != 32) || b->biBitCount != 32) return 0;
  const int32_t width = t->biWidth, height = t->biHeight, ballWidth = b->biWidth,
                ballHeight = b->biHeight;
  if (width <= 0 || height <= 0) return 0;
  const uint32_t tStride = DibStride(width, tBits), bStride = DibStride(ballWidth, 32);
  const int32_t tStep = tBits / 8;
  uint8_t* tPixels = DibBits(target);
  const uint8_t* bPixels = DibBits(ball);
  for (int32_t row = 0; row < ballHeight; ++row) {
    // Bottom-up rows: picture row r is stored at height - 1 - r.
    const uint8_t* in = bPixels + static_cast<size_t>(ballHeight - 1 - row) * bStride;
    uint8_t* out = tPixels + static_cast<size_t>(height - 1 - WrapCoordinate(y + row, height)) *
                                 tStride;
    for (int32_t column = 0; column < ballWidth; ++column) {
      const uint8_t* q = in + static_cast<size_t>(column) * 4;
      const int32_t faded = (q[3] * level) / 255;
      const uint32_t a = faded < 0 ? 0 : faded > 255 ? 255 : static_cast<uint32_t>(faded);
      uint8_t* p = out + static_cast<size_t>(WrapCoordinate(x + column, width)) * tStep;
      for (int c = 0; c < 3; ++c)
        p[c] = static_cast<uint8_t>((q[c] * a) / 255 + (p[c] * (255 - a)) / 255);
    }
  }
  return 1;
}
