// Gradient renderers. Linear, Elliptical and Rectangular draw filled bands on a render surface;
// Conical computes every pixel. Arithmetic keeps the precisions and truncations of the drawing
// model exactly: Linear in single precision, the shrinking shapes in single-precision floats,
// Conical's angles in double. Everything allocated is freed on every path; results are unlocked.
#include "materials/gradient.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "platform/surface.h"
#include "shell/packed_dib.h"
#include "text/image_copy.h"

namespace {

constexpr float kDegreesToRadians = 0.01745328f;
constexpr double kRadiansToDegrees = 57.29578;
constexpr int32_t kLinearBands = 256;
constexpr int32_t kConicalTable = 360;

// A table of `count` colours behind its count, locked for the life of the scope.
struct ColourTable {
  ScopedBlock block;
  ScopedLock lock;
  explicit ColourTable(MovableHandle handle) : block(handle), lock(handle) {}
  uint32_t At(int64_t index) const { return GradientTableEntry(lock.bytes, index); }
};

void SetTableEntry(uint8_t* table, int32_t index, uint32_t colour) {
  std::memcpy(table + 4 + static_cast<size_t>(index) * 4, &colour, 4);
}

int32_t TableCount(const uint8_t* table) {
  int32_t count;
  std::memcpy(&count, table, 4);
  return count;
}

SurfacePaint Brush(uint32_t colour) {
  return SurfacePaint{static_cast<int32_t>(colour), kSurfaceNone, 0};
}

// A surface for a renderer, or 0; the caller releases it through ReleaseRenderSurface.
int OpenSurface(int32_t width, int32_t height, RenderSurface* surface) {
  std::memset(surface, 0, sizeof(*surface));
  return CreateRenderSurface(width, height, surface);
}

// Hands the drawing back as a Packed DIB, or frees everything and returns null when `ok` is 0.
MovableHandle CloseSurface(RenderSurface* surface, int ok) {
  if (!ok) {
    ReleaseRenderSurface(surface, 0);
    return nullptr;
  }
  ReleaseRenderSurface(surface, kSurfaceKeepImage);
  return surface->handle;
}

struct Rotation {
  int32_t cx, cy;
  float c, s;
};

SurfacePoint Rotate(const Rotation& r, int32_t x, int32_t y) {
  const float dx = static_cast<float>(x - r.cx);
  const float dy = static_cast<float>(y - r.cy);
  const float rx = dx * r.c - dy * r.s;
  const float ry = dy * r.c + dx * r.s;
  return SurfacePoint{static_cast<int32_t>(rx) + r.cx, static_cast<int32_t>(ry) + r.cy};
}

// Elliptical and Rectangular: shapes drawn from the outside in, each drifting towards the centre.
MovableHandle ShrinkingShapes(int isEllipse, uint32_t first, uint32_t second, int32_t width,
                              int32_t height, int32_t centreX, int32_t centreY,
                              const GradientSpec* spec, const FountainGradient* fountain) {
  const int32_t hw = width / 2;
  const int32_t hh = height / 2;
  const int32_t n = static_cast<int32_t>(
      std::sqrt(static_cast<double>(hw) * hw + static_cast<double>(hh) * hh) + 0.5);
  ColourTable table(spec ? GradientLookup(spec, fountain, n) : nullptr);
  if (spec && !table.lock) return nullptr;

  RenderSurface surface;
  if (!OpenSurface(width, height, &surface)) return nullptr;
  const uint32_t background = spec ? table.At(0) : first;
  const SurfaceRect whole{0, 0, width, height};
  SurfaceFillRect(&surface, &whole, background);

  const float root2 = std::sqrt(2.0f);
  const float bw = static_cast<float>(width) * root2;
  const float bh = static_cast<float>(height) * root2;
  float left = static_cast<float>(hw) - bw / 2;
  float right = static_cast<float>(hw) + bw / 2;
  float top = static_cast<float>(hh) - bh / 2;
  float bottom = static_cast<float>(hh) + bh / 2;
  if (n > 0) {
    const float fn = static_cast<float>(n);
    const float sx = (bw / 2) / fn;
    const float sy = (bh / 2) / fn;
    const float dx = (bw / fn) * static_cast<float>(centreX) / 100;
    const float dy = (bh / fn) * static_cast<float>(centreY) / 100;
    for (int32_t i = 0; i < n; ++i) {
      const uint32_t colour =
          spec ? table.At(i) : BlendColours(first, second, static_cast<double>(i) / n);
      const SurfacePaint paint = Brush(colour);
      const SurfaceRect box{static_cast<int32_t>(left), static_cast<int32_t>(top),
                            static_cast<int32_t>(right), static_cast<int32_t>(bottom)};
      if (isEllipse)
        SurfaceEllipse(&surface, &box, &paint);
      else
        SurfaceRectangle(&surface, &box, &paint);
      left += sx + dx;
      right += dx - sx;
      top += sy + dy;
      bottom += dy - sy;
    }
  }
  return CloseSurface(&surface, 1);
}

}  // namespace

uint32_t GradientTableEntry(const uint8_t* table, int64_t index) {
  if (!table || index < 0 || index >= TableCount(table)) return 0;
  uint32_t value;
  std::memcpy(&value, table + 4 + static_cast<size_t>(index) * 4, 4);
  return value;
}

void InitFountainGradient(FountainGradient* gradient, int32_t set) {
  static const FountainMarker kRainbow[] = {0x20FF0000, 0x40FFFF00, 0x6000FF00, 0x8000FFFF,
                                            0xA00000FF, 0xC0FF00FF, 0xE0CC0099};
  std::memset(gradient->name, 0, sizeof(gradient->name));
  std::memset(gradient->markers, 0, sizeof(gradient->markers));
  std::memset(gradient->spare, 0, sizeof(gradient->spare));
  std::memcpy(gradient->magic, "COBLFOUN", 8);
  gradient->version = kFountainVersion;
  gradient->size = kFountainSize;
  gradient->leftColour = 0;
  gradient->rightColour = 0xFFFFFFFF;
  if (set == 0) {
    gradient->markerCount = 0;
  } else if (set == 1) {
    gradient->markerCount = 1;
    gradient->markers[0] = 0x80808080;
  } else {
    gradient->markerCount = 7;
    std::memcpy(gradient->markers, kRainbow, sizeof(kRainbow));
  }
}

uint32_t BlendColours(uint32_t a, uint32_t b, double t) {
  uint32_t result = 0;
  for (int shift = 0; shift < 24; shift += 8) {
    const double ca = static_cast<double>((a >> shift) & 0xFF);
    const double cb = static_cast<double>((b >> shift) & 0xFF);
    const uint32_t channel = static_cast<uint32_t>(static_cast<int32_t>(ca * (1 - t) + cb * t));
    result |= (channel & 0xFF) << shift;
  }
  return result;
}

MovableHandle LinearGradient(uint32_t first, uint32_t second, int32_t width, int32_t height,
                             int32_t, int32_t, int32_t rotation, const GradientSpec* spec,
                             const FountainGradient* fountain) {
  Rotation r;
  r.cx = width / 2;
  r.cy = height / 2;
  const float angle = static_cast<float>(rotation) * kDegreesToRadians;
  r.c = std::cos(angle);
  r.s = std::sin(angle);

  // The bounding box of the surface grown by 2 pixels, in the rotated frame.
  const SurfacePoint corners[4] = {Rotate(r, -2, -2), Rotate(r, width + 2, -2),
                                   Rotate(r, width + 2, height + 2), Rotate(r, -2, height + 2)};
  int32_t minX = corners[0].x, maxX = corners[0].x, minY = corners[0].y, maxY = corners[0].y;
  for (const SurfacePoint& p : corners) {
    minX = std::min(minX, p.x);
    maxX = std::max(maxX, p.x);
    minY = std::min(minY, p.y);
    maxY = std::max(maxY, p.y);
  }
  const float H = static_cast<float>(maxY - minY);
  const float step = H * 0.00390625f;

  // The table has as many entries as there are bands: 256.
  const int32_t count = H > 0 ? static_cast<int32_t>(H / step + 0.5f) : 0;
  ColourTable table(spec ? GradientLookup(spec, fountain, count) : nullptr);
  if (spec && !table.lock) return nullptr;

  RenderSurface surface;
  if (!OpenSurface(width, height, &surface)) return nullptr;
  float y = 0.0f;
  for (int32_t i = 0; y < H; ++i) {
    const float next = y + step;
    const float t = y / H;
    const int32_t top = minY + static_cast<int32_t>(y);
    const int32_t bottom = minY + static_cast<int32_t>(std::ceil(next));
    const SurfacePoint band[5] = {Rotate(r, minX, top), Rotate(r, maxX, top),
                                  Rotate(r, maxX, bottom), Rotate(r, minX, bottom),
                                  Rotate(r, minX, top)};
    // Plain mode runs from `second` at t = 0; table mode from the table's first entry.
    const uint32_t colour = spec ? table.At(i) : BlendColours(second, first, t);
    const SurfacePaint paint = Brush(colour);
    SurfacePolygon(&surface, band, 5, &paint, kFillAlternate);
    y = next;
  }
  return CloseSurface(&surface, 1);
}

MovableHandle ConicalGradient(uint32_t first, uint32_t second, int32_t width, int32_t height,
                              int32_t centreX, int32_t centreY, int32_t rotation,
                              const GradientSpec* spec, const FountainGradient* fountain) {
  ColourTable table(spec ? GradientLookup(spec, fountain, kConicalTable) : nullptr);
  if (spec && !table.lock) return nullptr;
  ScopedBlock image(CreatePackedDib(width, height, nullptr, 24));
  ScopedLock pixels(image.handle);
  if (!pixels) return nullptr;

  int32_t a0 = 360 - rotation;
  if (a0 < 0) a0 = 720 - rotation;
  const int32_t cx = static_cast<int32_t>((centreX / 100.0 + 0.5) * width);
  const int32_t cy = static_cast<int32_t>((0.5 - centreY / 100.0) * height);
  for (int32_t row = 0; row < height; ++row) {
    for (int32_t column = 0; column < width; ++column) {
      const int32_t dx = column - cx;
      const int32_t dy = row - cy;
      double a;
      if (dx == 0) {
        a = dy > 0 ? 270 : 90;
      } else {
        a = std::atan(static_cast<double>(dy) / dx) * kRadiansToDegrees;
        if (dx > 0) a += 180;
        while (a < 0) a += 360;
      }
      a += a0;
      while (a > 360) a -= 360;
      // Mirrored: one colour to the other and back round the circle.
      if (a > 180) a = 360 - a;
      double t = static_cast<int32_t>((a / 180.0) * 256.0) * 0.00390625;
      t = std::clamp(t, 0.0, 1.0);
      const uint32_t colour =
          spec ? table.At(static_cast<int32_t>(t * 359.0)) : BlendColours(first, second, t);
      WriteDibPixel(pixels.bytes, column, row, colour);
    }
  }
  return image.Release();
}

MovableHandle EllipticalGradient(uint32_t first, uint32_t second, int32_t width, int32_t height,
                                 int32_t centreX, int32_t centreY, int32_t,
                                 const GradientSpec* spec, const FountainGradient* fountain) {
  return ShrinkingShapes(1, first, second, width, height, centreX, centreY, spec, fountain);
}

MovableHandle RectangularGradient(uint32_t first, uint32_t second, int32_t width, int32_t height,
                                  int32_t centreX, int32_t centreY, int32_t,
                                  const GradientSpec* spec, const FountainGradient* fountain) {
  return ShrinkingShapes(0, first, second, width, height, centreX, centreY, spec, fountain);
}

namespace {

typedef MovableHandle (*GradientRenderer)(uint32_t, uint32_t, int32_t, int32_t, int32_t, int32_t,
                                          int32_t, const GradientSpec*, const FountainGradient*);

GradientRenderer RendererFor(int32_t type) {
  switch (type) {
    case kGradientConical:
      return ConicalGradient;
    case kGradientElliptical:
      return EllipticalGradient;
    case kGradientRectangular:
      return RectangularGradient;
    default:
      return LinearGradient;
  }
}

}  // namespace

MovableHandle MakeGradientImage(int32_t width, int32_t height, const GradientSpec* spec,
                                const FountainGradient* fountain) {
  if (!spec) return nullptr;
  return RendererFor(spec->type)(spec->startColour, spec->endColour, width, height, spec->centreX,
                                 spec->centreY, spec->rotation, spec, fountain);
}

MovableHandle MakeRampImage(uint32_t first, uint32_t second, int32_t width, int32_t height,
                            int32_t centreX, int32_t centreY, int32_t rotation, int32_t type) {
  return RendererFor(type)(first, second, width, height, centreX, centreY, rotation, nullptr,
                           nullptr);
}

MovableHandle GradientLookup(const GradientSpec* spec, const FountainGradient* fountain,
                             int32_t count) {
  if (!spec || count < 0) return nullptr;
  ScopedBlock block(MovableAlloc(4 + static_cast<size_t>(count) * 4));
  ScopedLock table(block.handle);
  if (!table) return nullptr;
  std::memcpy(table.bytes, &count, 4);

  int32_t e = 0;
  int32_t body = count;
  if (spec->edgePad > 0) {
    // A pad beyond half the table is outside the editor's range; it is held to half here so that
    // the two flat ends stay inside the block.
    e = std::min(static_cast<int32_t>(spec->edgePad / 100.0 * count), count / 2);
    body = count - 2 * e;
    for (int32_t i = 0; i < e; ++i) {
      SetTableEntry(table.bytes, i, spec->startColour);
      SetTableEntry(table.bytes, count - 1 - i, spec->endColour);
    }
  }

  if (spec->twoColour == 0) {
    if (!fountain) return nullptr;
    ScopedBlock strip(FountainStrip(fountain, body, 1));
    ScopedLock pixels(strip.handle);
    if (!pixels) return nullptr;
    for (int32_t i = 0; i < body; ++i)
      SetTableEntry(table.bytes, e + i, ReadDibPixel(pixels.bytes, i, 0) & 0xFFFFFF);
    return block.Release();
  }

  if (spec->midpoint == 50) {
    for (int32_t i = 0; i < body; ++i)
      SetTableEntry(
          table.bytes, e + i,
          BlendColours(spec->startColour, spec->endColour, static_cast<double>(i) / body));
  } else {
    // A three-marker list of which only two markers count, and whose middle position ignores the
    // pad: the table that results is the one users have always seen.
    FountainGradient temp;
    std::memset(&temp, 0, sizeof(temp));
    const int32_t p = static_cast<int32_t>(spec->edgePad / 100.0 * 255.0);
    const int32_t middle = static_cast<int32_t>((255 - 2 * p) * (spec->midpoint / 100.0));
    uint32_t mean = 0;
    for (int shift = 0; shift < 24; shift += 8)
      mean |= ((((spec->startColour >> shift) & 0xFF) + ((spec->endColour >> shift) & 0xFF)) / 2)
              << shift;
    temp.leftColour = spec->startColour;
    temp.rightColour = spec->endColour;
    temp.markers[0] = static_cast<uint32_t>(p & 0xFF) << 24 | (spec->startColour & 0xFFFFFF);
    temp.markers[1] = static_cast<uint32_t>(middle & 0xFF) << 24 | mean;
    temp.markers[2] = static_cast<uint32_t>((255 - p) & 0xFF) << 24 | (spec->endColour & 0xFFFFFF);
    temp.markerCount = 2;
    ScopedBlock strip(FountainStrip(&temp, count, 1));
    ScopedLock pixels(strip.handle);
    if (!pixels) return nullptr;
    for (int32_t i = 0; i < count; ++i)
      SetTableEntry(table.bytes, i, ReadDibPixel(pixels.bytes, i, 0) & 0xFFFFFF);
  }
  if (count > 0) {
    SetTableEntry(table.bytes, 0, spec->startColour);
    SetTableEntry(table.bytes, count - 1, spec->endColour);
  }
  return block.Release();
}

MovableHandle FountainStrip(const FountainGradient* gradient, int32_t width, int32_t height) {
  if (!gradient) return nullptr;
  ScopedBlock strip(CreatePackedDib(width, height, nullptr, 24));
  if (!strip.handle) return nullptr;
  const uint32_t count = std::min<uint32_t>(gradient->markerCount, kFountainMarkers);
  int32_t x[kFountainMarkers] = {};
  for (uint32_t i = 0; i < count; ++i)
    x[i] = static_cast<int32_t>((gradient->markers[i] >> 24) / 255.0 * width);

  uint32_t previous = gradient->leftColour & 0xFFFFFF;
  int32_t from = 0;
  // One Linear ramp per segment, at 90 degrees so that it runs from `previous` at its left.
  auto segment = [&](uint32_t colour, int32_t segmentWidth) {
    ScopedBlock ramp(MakeRampImage(previous, colour, segmentWidth, height, 50, 50, 90, 0));
    if (!ramp.handle) return 0;
    return CopyImageRect(strip.handle, from, 0, ramp.handle, 0, 0, segmentWidth, height);
  };
  for (uint32_t i = 0; i < count; ++i) {
    const uint32_t colour = gradient->markers[i] & 0xFFFFFF;
    if (x[i] - from > 0 && !segment(colour, x[i] - from)) return nullptr;
    // A marker that does not advance still changes the colour: a hard step.
    from = x[i];
    previous = colour;
  }
  const uint32_t last =
      (gradient->flags & kFountainLooped ? gradient->leftColour : gradient->rightColour) & 0xFFFFFF;
  if (width - from >= 1 && !segment(last, width - from)) return nullptr;
  return strip.Release();
}
