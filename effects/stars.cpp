// Stars' state, stars and frames. The generator's calls while the state is prepared decide the
// picture; frames draw none.
#include "effects/stars.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "controls/value_controls.h"
#include "effects/item_choice.h"
#include "effects/item_shadow.h"
#include "effects/key_colour.h"
#include "effects/wrapping_stamp.h"
#include "imaging/resampler.h"
#include "materials/material_button.h"
#include "platform/surface.h"
#include "shell/crt_random.h"
#include "shell/packed_dib.h"

namespace {

// Page 7403.
constexpr int32_t kIdShadow = 224, kIdBackground = 226, kIdOutline = 228, kIdShadowOpacity = 230,
                  kIdFrames = 232, kIdSoftness = 234, kIdShadowOffset = 236,
                  kIdShadowDirection = 238, kIdShadowEnable = 240, kIdOutlineEnable = 241,
                  kIdFillBackground = 242, kIdFillOpacity = 244, kIdDrift = 246, kIdSize = 248,
                  kIdDensity = 250, kIdSeed = 252, kIdColor1 = 258, kIdEnable2 = 268,
                  kIdVariable = 272;

constexpr double kPi = 3.14159265358979323846;
constexpr int32_t kSizeSteps[5] = {100, 90, 75, 60, 50};

}  // namespace

MovableHandle DrawStar(int32_t side, int32_t level) {
  RenderSurface surface;
  if (!CreateRenderSurface(2 * side, 2 * side, &surface)) return nullptr;
  const int32_t w = surface.rect.right, h = surface.rect.bottom;
  const int32_t cx = w / 2, cy = h / 2;
  // The radius is 60 % of the surface, so the tips pass the edge and are clipped.
  const float r = static_cast<float>(std::min(w, h) * 0.6);
  auto at = [r](double k) { return static_cast<int32_t>(r * k); };
  // The corners in pentagram order; winding fill paints the centre too.
  const SurfacePoint points[5] = {{cx, cy - static_cast<int32_t>(r)},
                                  {cx - at(-0.58779), cy - at(-0.80902)},
                                  {cx - at(0.95106), cy - at(0.30902)},
                                  {cx - at(-0.95106), cy - at(0.30902)},
                                  {cx - at(0.58779), cy - at(-0.80902)}};
  const int32_t grey = level & 0xFF;
  const SurfacePaint paint = {grey << 16 | grey << 8 | grey, kSurfaceNone, 0};
  SurfacePolygon(&surface, points, 5, &paint, kFillWinding);
  ReleaseRenderSurface(&surface, kSurfaceKeepImage);
  MovableHandle halved = ResampleByPercent(surface.handle, 50, 50);
  if (!halved) return surface.handle;
  MovableFree(surface.handle);
  return halved;
}

int PrepareStarsState(StarsState* state, const StarsSettings* settings, int32_t width,
                      int32_t height, Material* fill) {
  std::memset(state, 0, sizeof(*state));
  if (width < 1 || height < 1) return 0;
  state->width = width;
  state->height = height;
  state->frames = settings->frames;
  state->size = settings->size;
  state->drift = settings->drift;
  std::memcpy(state->sizeSteps, kSizeSteps, sizeof(kSizeSteps));
  crt::srand(static_cast<uint32_t>(settings->seed));
  state->colorCount = CollectItemColours(settings->colors, settings->enabled, state->colors);
  state->starCount = settings->density;
  if (state->starCount < 1) return 0;
  state->starBlock = MovableAlloc(static_cast<size_t>(state->starCount) * sizeof(StarItem));
  state->stars = static_cast<StarItem*>(MovableLock(state->starBlock));
  if (!state->stars) return 0;
  int32_t last = -1;
  for (int32_t i = 0; i < state->starCount; ++i) {
    StarItem& star = state->stars[i];
    star.x = crt::rand() % width;
    star.y = crt::rand() % height;
    star.size = settings->size;
    star.speed = i % 3 == 0 ? 1 : i % 3 == 1 ? 2 : 4;
    star.alpha = 255;
    star.phase = static_cast<float>(crt::rand() % 360);
    star.opacity = settings->fillOpacity;
    star.color = state->colors[DrawItemIndex(state->colorCount, &last)];
    const int32_t scale = settings->variableSizes ? state->sizeSteps[i % 5] : 100;
    const int32_t side = (scale * settings->size) / 100;
    star.image = DrawStar(side, 255);
    if (!star.image) return 0;
    if (settings->shadowOpacity > 0) {
      star.shadow = DrawStar(side, settings->shadowOpacity);
      if (!star.shadow) return 0;
      SoftenItemImage(&star.shadow, settings->shadowOffset, settings->softness);
    }
  }
  if (fill) state->fillImage = MaterialFill(fill, width, height);
  return 1;
}

void ReleaseStarsState(StarsState* state) {
  for (int32_t i = 0; state->stars && i < state->starCount; ++i) {
    MovableFree(state->stars[i].image);
    MovableFree(state->stars[i].shadow);
  }
  if (state->stars) MovableUnlock(state->starBlock);
  MovableFree(state->starBlock);
  MovableFree(state->fillImage);
  std::memset(state, 0, sizeof(*state));
}

int StampFallingItems(void* target, StarItem* items, int32_t count, int32_t frameNumber,
                      int32_t frames, int32_t width, int32_t height, int32_t drift,
                      uint32_t shadowColour, int32_t shadowOpacity) {
  // As snow: `speed` canvas heights fallen and one turn of the sway per loop. The half side is of
  // the Size, so items drawn smaller sit to the upper left of their slot.
  const int32_t amplitude = static_cast<int32_t>((drift / -100.0) * width);
  const int32_t fallen = static_cast<int32_t>(
      (static_cast<float>(frameNumber) / static_cast<float>(frames)) * static_cast<float>(height));
  for (int32_t i = 0; i < count; ++i) {
    StarItem& item = items[i];
    const int32_t sway = static_cast<int32_t>(std::sin(item.phase * kPi / 180) * amplitude);
    const int32_t x = item.x - sway - item.size / 2;
    const int32_t y = fallen * item.speed + item.y - height + 1 - item.size / 2;
    if (item.shadow) {
      ScopedLock shadow(item.shadow);
      if (!shadow || !StampWrapped(target, shadow.bytes, x, y, shadowColour,
                                   std::min(item.opacity, shadowOpacity)))
        return 0;
    }
    ScopedLock stamp(item.image);
    if (!stamp || !StampWrapped(target, stamp.bytes, x, y, item.color, item.opacity)) return 0;
    item.phase = static_cast<float>(item.phase + (1.0 / frames) * 360.0);
  }
  return 1;
}

MovableHandle RenderStarsFrame(StarsState* state, int32_t frameNumber) {
  state->frameNumber = frameNumber;
  ScopedBlock frame(DuplicateHandle(state->fillImage));
  ScopedLock target(frame.handle);
  if (!target || state->frames < 1) return nullptr;
  // The shadows are black at the stars' own opacity.
  if (!StampFallingItems(target.bytes, state->stars, state->starCount, frameNumber, state->frames,
                         state->width, state->height, state->drift, 0, 255))
    return nullptr;
  return frame.Release();
}

void ReadStarsSettings(WindowHandle dialog, StarsSettings* settings) {
  std::memset(settings, 0, sizeof(*settings));
  int translated;
  for (int i = 0; i < 5; ++i) {
    settings->colors[i] = GetDialogItemInt(dialog, kIdColor1 + 2 * i, &translated, 0);
    if (i > 0) settings->enabled[i] = DialogGetCheck(DialogItem(dialog, kIdEnable2 + i - 1));
  }
  settings->variableSizes = DialogGetCheck(DialogItem(dialog, kIdVariable));
  settings->shadowOpacity = ReadDlgValue(dialog, kIdShadowOpacity);
  settings->shadowOffset = ReadDlgValue(dialog, kIdShadowOffset);
  settings->softness = ReadDlgValue(dialog, kIdSoftness);
  settings->seed = ReadDlgValue(dialog, kIdSeed);
  settings->fillOpacity = ReadDlgValue(dialog, kIdFillOpacity);
  settings->drift = ReadDlgValue(dialog, kIdDrift);
  settings->density = ReadDlgValue(dialog, kIdDensity);
  settings->size = ReadDlgValue(dialog, kIdSize);
  settings->frames = ReadDlgValue(dialog, kIdFrames);
}

namespace {

int PrepareStars(void* state, WindowHandle dialog, int32_t width, int32_t height) {
  StarsSettings settings;
  ReadStarsSettings(dialog, &settings);
  ScopedButtonMaterial fill(DialogItem(dialog, kIdFillBackground));
  return PrepareStarsState(static_cast<StarsState*>(state), &settings, width, height,
                           fill.material);
}

MovableHandle StarsFrame(void* state, int32_t frameNumber) {
  return RenderStarsFrame(static_cast<StarsState*>(state), frameNumber);
}

void ReleaseStars(void* state) {
  ReleaseStarsState(static_cast<StarsState*>(state));
}

}  // namespace

const FrameSetEffect kStarsFrameSet = {
    {0, kIdShadow, kIdBackground, kIdOutline, 0, kIdShadowOpacity, kIdSoftness, kIdShadowOffset,
     kIdShadowDirection, kIdShadowEnable, kIdOutlineEnable},
    kIdFrames,
    sizeof(StarsState),
    PrepareStars,
    StarsFrame,
    ReleaseStars,
    0,
};

int StarsEffectPreview(BuildContext* context) {
  return FrameSetEffectPreview(context, &kStarsFrameSet);
}

int StarsEffectBuild(BuildContext* context) {
  return FrameSetEffectBuild(context, &kStarsFrameSet);
}

int32_t StarsEffectKeyColour(WindowHandle dialog, int32_t mode) {
  return PageBackgroundKeyColour(dialog, mode, kIdBackground);
}
