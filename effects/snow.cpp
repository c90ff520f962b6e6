// Snow's state, flakes and frames. The random sequence decides the whole picture, so the order of
// the generator's calls below is part of the look, the calls whose results are dropped included.
// Frames draw no random numbers: two builds with the same seed, page and canvas are identical, and
// the sample is the build's first frame.
#include "effects/snow.h"

#include <cmath>
#include <cstring>

#include "controls/value_controls.h"
#include "effects/key_colour.h"
#include "effects/item_choice.h"
#include "effects/wrapping_stamp.h"
#include "imaging/resampler.h"
#include "materials/material_button.h"
#include "platform/surface.h"
#include "shell/crt_random.h"
#include "shell/packed_dib.h"

namespace {

// Page 7402.
constexpr int32_t kIdShadow = 167, kIdBackground = 169, kIdOutline = 171, kIdShadowOpacity = 173,
                  kIdFrames = 175, kIdSoftness = 177, kIdShadowOffset = 179,
                  kIdShadowDirection = 181, kIdShadowEnable = 183, kIdOutlineEnable = 184,
                  kIdFillBackground = 185, kIdFillOpacity = 187, kIdDrift = 189, kIdSize = 191,
                  kIdDensity = 193, kIdSeed = 195, kIdColor1 = 201, kIdEnable2 = 211;

constexpr double kPi = 3.14159265358979323846;

// A point of the flake, in units of the final flake side.
struct FlakePoint {
  double x, y;
};

struct FlakeDrawing {
  const SnowFlakeShape* shape;
  RenderSurface* surface;
  double c, s;  // cosine and sine of the branch angle
};

// Lines are drawn on the doubled surface: each coordinate truncated first, then doubled.
void DrawSegment(const FlakeDrawing& d, FlakePoint a, FlakePoint b) {
  SurfaceLine(d.surface, static_cast<int32_t>(a.x) * 2, static_cast<int32_t>(a.y) * 2,
              static_cast<int32_t>(b.x) * 2, static_cast<int32_t>(b.y) * 2, d.shape->pen, 2);
}

void DrawBranch(const FlakeDrawing& d, FlakePoint p1, FlakePoint p2, int32_t depth) {
  const SnowFlakeShape& shape = *d.shape;
  if (shape.kind == 0) DrawSegment(d, p1, p2);
  const FlakePoint b = {p1.x + shape.branchStart * (p2.x - p1.x),
                        p1.y + shape.branchStart * (p2.y - p1.y)};
  const double dx = shape.branchLength * (p2.x - p1.x), dy = shape.branchLength * (p2.y - p1.y);
  const FlakePoint plus = {d.c * dx - d.s * dy + b.x, d.c * dy + d.s * dx + b.y};
  const FlakePoint minus = {d.c * dx + d.s * dy + b.x, d.c * dy - d.s * dx + b.y};
  if (depth >= shape.depthLimit) {
    if (shape.kind == 1) {
      DrawSegment(d, b, plus);
      DrawSegment(d, b, minus);
    }
    if (depth == shape.depthLimit) return;
  }
  DrawBranch(d, b, plus, depth + 1);
  DrawBranch(d, b, minus, depth + 1);
  if (shape.kind == 1) {
    DrawBranch(d, p1, b, depth + 1);
    DrawBranch(d, b, p2, depth + 1);
  }
}

}  // namespace

MovableHandle DrawSnowFlake(int32_t side) {
  SnowFlakeShape shape{};
  shape.size = side;
  shape.pen = 0xFFFFFF;
  shape.kind = crt::rand() % 2 == 0 ? 1 : 0;
  crt::rand();
  shape.branchAngle = crt::rand() % 150 + 15;
  // The scale assumes results up to 2^31 - 1 and the generator gives at most 32767, so these stay
  // within 0.00001 of 0.2 and 0.3; the formulas are kept as they stand, in single precision.
  shape.branchStart = static_cast<float>(crt::rand() % 2147483647) * 4.656613e-10f * 0.6f + 0.2f;
  shape.branchLength = static_cast<float>(crt::rand() % 2147483647) * 4.656613e-10f * 0.4f + 0.3f;

  RenderSurface surface;
  if (!CreateRenderSurface(2 * side, 2 * side, &surface)) return nullptr;  // black already
  if (shape.branchStart * shape.branchLength > 0.36f) {
    if (shape.kind == 1)
      shape.branchLength /= 2;
    else
      shape.branchStart /= 2;
  }
  if (shape.branchStart * shape.branchLength < 0.1f) shape.branchLength *= 2;
  if (shape.kind == 1)
    shape.depthLimit = crt::rand() % (3 - static_cast<int32_t>(side / -900.0)) +
                       static_cast<int32_t>(std::pow(static_cast<double>(side), 0.17));
  else
    shape.depthLimit = crt::rand() % (4 - static_cast<int32_t>(side / -50.0)) +
                       static_cast<int32_t>(std::pow(static_cast<double>(side), 0.2));

  // The branch angle is converted to radians in single precision; points and the arms' angles
  // are in double.
  const float radians = static_cast<float>(shape.branchAngle * 3.1415927 / 180.0);
  const FlakeDrawing drawing = {&shape, &surface, std::cos(static_cast<double>(radians)),
                                std::sin(static_cast<double>(radians))};
  // Six arms from the centre; the arm vector (0, -h) is turned by 0, 60, ... 300 degrees.
  const int32_t h = side / 2;
  const double ax = 0, ay = -h;
  for (int32_t a = 0; a < 360; a += 60) {
    const double c = std::cos(a * kPi / 180.0), s = std::sin(a * kPi / 180.0);
    const FlakePoint centre = {static_cast<double>(h), static_cast<double>(h)};
    const FlakePoint end = {ax * c - ay * s + h, ay * c + ax * s + h};
    DrawBranch(drawing, centre, end, 0);
  }
  ReleaseRenderSurface(&surface, kSurfaceKeepImage);
  MovableHandle halved = ResampleByPercent(surface.handle, 50, 50);
  if (!halved) return surface.handle;
  MovableFree(surface.handle);
  return halved;
}

int PrepareSnowState(SnowState* state, const SnowSettings* settings, int32_t width, int32_t height,
                     Material* fill) {
  std::memset(state, 0, sizeof(*state));
  if (width < 1 || height < 1) return 0;
  state->width = width;
  state->height = height;
  state->frames = settings->frames;
  state->size = settings->size;
  state->drift = settings->drift;
  crt::srand(static_cast<uint32_t>(settings->seed));
  state->colorCount = CollectItemColours(settings->colors, settings->enabled, state->colors);

  state->flakeCount = settings->density;
  if (state->flakeCount < 1) return 0;
  state->flakeBlock = MovableAlloc(static_cast<size_t>(state->flakeCount) * sizeof(SnowFlake));
  state->flakes = static_cast<SnowFlake*>(MovableLock(state->flakeBlock));
  if (!state->flakes) return 0;
  int32_t spread = settings->size / 9;
  if (spread < 1) spread = 1;
  int32_t last = -1;
  for (int32_t i = 0; i < state->flakeCount; ++i) {
    SnowFlake& flake = state->flakes[i];
    flake.x = crt::rand() % width;
    flake.y = crt::rand() % height;
    crt::rand();
    flake.size = settings->size - crt::rand() % spread;
    flake.speed = i % 3 == 0 ? 1 : i % 3 == 1 ? 2 : 4;
    flake.alpha = 255;
    flake.phase = static_cast<float>(crt::rand() % 360);
    flake.opacity = settings->fillOpacity;
    flake.color = state->colors[DrawItemIndex(state->colorCount, &last)];
    flake.image = DrawSnowFlake(flake.size);
    if (!flake.image) return 0;
  }
  // Without a material the fill stays null and every frame fails.
  if (fill) state->fillImage = MaterialFill(fill, width, height);
  return 1;
}

void ReleaseSnowState(SnowState* state) {
  for (int32_t i = 0; state->flakes && i < state->flakeCount; ++i)
    MovableFree(state->flakes[i].image);
  if (state->flakes) MovableUnlock(state->flakeBlock);
  MovableFree(state->flakeBlock);
  MovableFree(state->fillImage);
  std::memset(state, 0, sizeof(*state));
}

MovableHandle RenderSnowFrame(SnowState* state, int32_t frameNumber) {
  state->frameNumber = frameNumber;
  ScopedBlock frame(DuplicateHandle(state->fillImage));
  ScopedLock target(frame.handle);
  if (!target || state->frames < 1) return nullptr;
  const int32_t f = frameNumber, frames = state->frames, w = state->width, h = state->height;
  // Each flake falls `speed` canvas heights and its drift turns once in a loop of `frames`, so
  // with the wrap the last frame leads into the first without a seam.
  const int32_t amplitude = static_cast<int32_t>((state->drift / -100.0) * w);
  const int32_t fallen = static_cast<int32_t>((static_cast<float>(f) / static_cast<float>(frames)) *
                                              static_cast<float>(h));
  for (int32_t i = 0; i < state->flakeCount; ++i) {
    SnowFlake& flake = state->flakes[i];
    const int32_t dx = static_cast<int32_t>(std::sin(flake.phase * kPi / 180) * amplitude);
    const int32_t x = flake.x - dx - flake.size / 2;
    const int32_t y = fallen * flake.speed + flake.y - h + 1 - flake.size / 2;
    ScopedLock stamp(flake.image);
    if (!stamp || !StampWrapped(target.bytes, stamp.bytes, x, y, flake.color, flake.opacity))
      return nullptr;
    flake.phase = static_cast<float>(flake.phase + (1.0 / frames) * 360.0);
  }
  return frame.Release();
}

void ReadSnowSettings(WindowHandle dialog, SnowSettings* settings) {
  std::memset(settings, 0, sizeof(*settings));
  int translated;
  for (int i = 0; i < 5; ++i) {
    settings->colors[i] = GetDialogItemInt(dialog, kIdColor1 + 2 * i, &translated, 0);
    if (i > 0) settings->enabled[i] = DialogGetCheck(DialogItem(dialog, kIdEnable2 + i - 1));
  }
  settings->seed = ReadDlgValue(dialog, kIdSeed);
  settings->fillOpacity = ReadDlgValue(dialog, kIdFillOpacity);
  settings->drift = ReadDlgValue(dialog, kIdDrift);
  settings->density = ReadDlgValue(dialog, kIdDensity);
  settings->size = ReadDlgValue(dialog, kIdSize);
  settings->frames = ReadDlgValue(dialog, kIdFrames);
}

namespace {

int PrepareSnow(void* state, WindowHandle dialog, int32_t width, int32_t height) {
  SnowSettings settings;
  ReadSnowSettings(dialog, &settings);
  ScopedButtonMaterial fill(DialogItem(dialog, kIdFillBackground));
  return PrepareSnowState(static_cast<SnowState*>(state), &settings, width, height, fill.material);
}

MovableHandle SnowFrame(void* state, int32_t frameNumber) {
  return RenderSnowFrame(static_cast<SnowState*>(state), frameNumber);
}

void ReleaseSnow(void* state) {
  ReleaseSnowState(static_cast<SnowState*>(state));
}

}  // namespace

const FrameSetEffect kSnowFrameSet = {
    {0, kIdShadow, kIdBackground, kIdOutline, 0, kIdShadowOpacity, kIdSoftness, kIdShadowOffset,
     kIdShadowDirection, kIdShadowEnable, kIdOutlineEnable},
    kIdFrames,
    sizeof(SnowState),
    PrepareSnow,
    SnowFrame,
    ReleaseSnow,
    0,
};

int SnowEffectPreview(BuildContext* context) {
  return FrameSetEffectPreview(context, &kSnowFrameSet);
}

int SnowEffectBuild(BuildContext* context) {
  return FrameSetEffectBuild(context, &kSnowFrameSet);
}

int32_t SnowEffectKeyColour(WindowHandle dialog, int32_t mode) {
  return PageBackgroundKeyColour(dialog, mode, kIdBackground);
}
