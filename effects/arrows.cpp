// Arrows' state, arrows and frames. As in every frame set, the order of the generator's calls
// while the state is prepared decides the picture; frames draw no random numbers.
#include "effects/arrows.h"

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

// Page 7407.
constexpr int32_t kIdShadow = 408, kIdBackground = 410, kIdOutline = 412, kIdShadowOpacity = 414,
                  kIdSoftness = 416, kIdShadowOffset = 418, kIdShadowDirection = 420,
                  kIdShadowEnable = 422, kIdOutlineEnable = 423, kIdFillOpacity = 424,
                  kIdFrames = 426, kIdDrift = 428, kIdSize = 430, kIdDensity = 432, kIdSeed = 434,
                  kIdColor1 = 436, kIdEnable2 = 446, kIdUpperBox = 451, kIdFillBackground = 456;

constexpr double kPi = 3.14159265358979323846;

// The turns of headings 1 to 3, stored in single precision a little short of 3 pi / 2, pi and
// pi / 2; the arrow's corners depend on these exact values.
constexpr float kHeadingTurn[4] = {0.0f, 4.712385654449463f, 3.1415903568267822f,
                                   1.5707951784133911f};

}  // namespace

MovableHandle DrawArrow(int32_t side, int32_t heading) {
  RenderSurface surface;
  if (!CreateRenderSurface(2 * side, 2 * side, &surface)) return nullptr;
  const int32_t f = surface.rect.bottom, a = surface.rect.right / 2, b = surface.rect.bottom / 2;
  const int32_t a2 = a / 2, a5 = a / 5;
  SurfacePoint points[8] = {{a, 0},      {a + a2, a2}, {a + a5, a2}, {a + a5, f},
                            {a - a5, f}, {a - a5, a2}, {a - a2, a2}, {a, 0}};
  if (heading >= 1 && heading <= 3) {
    const float t = kHeadingTurn[heading];
    const float c = std::cos(t), s = std::sin(t);
    for (SurfacePoint& p : points) {
      const float dx = static_cast<float>(p.x) - static_cast<float>(a);
      const float dy = static_cast<float>(p.y) - static_cast<float>(b);
      p = {static_cast<int32_t>(dx * c - dy * s) + a, static_cast<int32_t>(dx * s + dy * c) + b};
    }
  }
  const SurfacePaint paint = {0xFFFFFF, kSurfaceNone, 0};
  SurfacePolygon(&surface, points, 8, &paint, kFillAlternate);
  ReleaseRenderSurface(&surface, kSurfaceKeepImage);
  MovableHandle halved = ResampleByPercent(surface.handle, 50, 50);
  if (!halved) return surface.handle;
  MovableFree(surface.handle);
  return halved;
}

int PrepareArrowsState(ArrowsState* state, const ArrowsSettings* settings, int32_t width,
                       int32_t height, Material* fill) {
  std::memset(state, 0, sizeof(*state));
  if (width < 1 || height < 1) return 0;
  state->width = width;
  state->height = height;
  state->frames = settings->frames;
  state->size = settings->size;
  state->drift = settings->drift;
  crt::srand(static_cast<uint32_t>(settings->seed));
  state->colorCount = CollectItemColours(settings->colors, settings->enabled, state->colors);
  for (int32_t h = 0; h < 4; ++h)
    if (settings->directions[h]) state->headings[state->headingCount++] = h;
  if (state->headingCount == 0) state->headings[state->headingCount++] = kHeadingLeft;

  state->arrowCount = settings->density;
  if (state->arrowCount < 1) return 0;
  state->arrowBlock = MovableAlloc(static_cast<size_t>(state->arrowCount) * sizeof(ArrowItem));
  state->arrows = static_cast<ArrowItem*>(MovableLock(state->arrowBlock));
  if (!state->arrows) return 0;
  int32_t spread = settings->size / 9;
  if (spread < 1) spread = 1;
  int32_t lastColour = -1, lastHeading = -1;
  for (int32_t i = 0; i < state->arrowCount; ++i) {
    ArrowItem& arrow = state->arrows[i];
    arrow.x = crt::rand() % width;
    arrow.y = crt::rand() % height;
    crt::rand();
    arrow.size = settings->size - crt::rand() % spread;
    arrow.speed = i % 3 == 0 ? 1 : i % 3 == 1 ? 2 : 4;
    arrow.alpha = 255;
    arrow.phase = static_cast<float>(crt::rand() % 360);
    arrow.opacity = settings->fillOpacity;
    arrow.color = state->colors[DrawItemIndex(state->colorCount, &lastColour)];
    arrow.heading = state->headings[DrawItemIndex(state->headingCount, &lastHeading)];
    arrow.image = DrawArrow(arrow.size, arrow.heading);
    if (!arrow.image) return 0;
    if (settings->shadowOpacity > 0) {
      arrow.shadow = ItemShadowImage(arrow.image, settings->shadowOffset, settings->softness,
                                     settings->shadowOpacity);
      if (!arrow.shadow) return 0;
    }
  }
  if (fill) state->fillImage = MaterialFill(fill, width, height);
  return 1;
}

void ReleaseArrowsState(ArrowsState* state) {
  for (int32_t i = 0; state->arrows && i < state->arrowCount; ++i) {
    MovableFree(state->arrows[i].image);
    MovableFree(state->arrows[i].shadow);
  }
  if (state->arrows) MovableUnlock(state->arrowBlock);
  MovableFree(state->arrowBlock);
  MovableFree(state->fillImage);
  std::memset(state, 0, sizeof(*state));
}

MovableHandle RenderArrowsFrame(ArrowsState* state, int32_t frameNumber) {
  state->frameNumber = frameNumber;
  ScopedBlock frame(DuplicateHandle(state->fillImage));
  ScopedLock target(frame.handle);
  if (!target || state->frames < 1) return nullptr;
  const int32_t w = state->width, h = state->height, frames = state->frames;
  const float fr = static_cast<float>(frameNumber) / static_cast<float>(frames);
  // Each arrow travels `speed` canvas sizes along its heading in one loop and its sway turns
  // once, so with the wrap the loop closes.
  const int32_t amplitude = static_cast<int32_t>((state->drift / 100.0) * w);
  const int32_t down = static_cast<int32_t>(static_cast<float>(h) * fr);
  const int32_t across = static_cast<int32_t>(fr * static_cast<float>(w));
  for (int32_t i = 0; i < state->arrowCount; ++i) {
    ArrowItem& arrow = state->arrows[i];
    const int32_t sway = static_cast<int32_t>(std::sin(arrow.phase * kPi / 180) * amplitude);
    int32_t ox = sway, oy = sway;
    switch (arrow.heading) {
      case kHeadingUp:
        oy = h - down * arrow.speed - 1;
        break;
      case kHeadingLeft:
        ox = w - across * arrow.speed - 1;
        break;
      case kHeadingDown:
        oy = down * arrow.speed - h + 1;
        break;
      default:
        ox = across * arrow.speed - w + 1;
        break;
    }
    const int32_t x = arrow.x + ox - arrow.size / 2, y = arrow.y + oy - arrow.size / 2;
    if (arrow.shadow) {
      ScopedLock shadow(arrow.shadow);
      if (!shadow || !StampWrapped(target.bytes, shadow.bytes, x, y, 0, arrow.opacity))
        return nullptr;
    }
    ScopedLock stamp(arrow.image);
    if (!stamp || !StampWrapped(target.bytes, stamp.bytes, x, y, arrow.color, arrow.opacity))
      return nullptr;
    arrow.phase = static_cast<float>(arrow.phase + (1.0 / frames) * 360.0);
  }
  return frame.Release();
}

void ReadArrowsSettings(WindowHandle dialog, ArrowsSettings* settings) {
  std::memset(settings, 0, sizeof(*settings));
  int translated;
  for (int i = 0; i < 5; ++i) {
    settings->colors[i] = GetDialogItemInt(dialog, kIdColor1 + 2 * i, &translated, 0);
    if (i > 0) settings->enabled[i] = DialogGetCheck(DialogItem(dialog, kIdEnable2 + i - 1));
  }
  for (int i = 0; i < 4; ++i)
    settings->directions[i] = DialogGetCheck(DialogItem(dialog, kIdUpperBox + i));
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

int PrepareArrows(void* state, WindowHandle dialog, int32_t width, int32_t height) {
  ArrowsSettings settings;
  ReadArrowsSettings(dialog, &settings);
  ScopedButtonMaterial fill(DialogItem(dialog, kIdFillBackground));
  return PrepareArrowsState(static_cast<ArrowsState*>(state), &settings, width, height,
                            fill.material);
}

MovableHandle ArrowsFrame(void* state, int32_t frameNumber) {
  return RenderArrowsFrame(static_cast<ArrowsState*>(state), frameNumber);
}

void ReleaseArrows(void* state) {
  ReleaseArrowsState(static_cast<ArrowsState*>(state));
}

}  // namespace

const FrameSetEffect kArrowsFrameSet = {
    {0, kIdShadow, kIdBackground, kIdOutline, 0, kIdShadowOpacity, kIdSoftness, kIdShadowOffset,
     kIdShadowDirection, kIdShadowEnable, kIdOutlineEnable},
    kIdFrames,
    sizeof(ArrowsState),
    PrepareArrows,
    ArrowsFrame,
    ReleaseArrows,
    0,
};

int ArrowsEffectPreview(BuildContext* context) {
  return FrameSetEffectPreview(context, &kArrowsFrameSet);
}

int ArrowsEffectBuild(BuildContext* context) {
  return FrameSetEffectBuild(context, &kArrowsFrameSet);
}

int32_t ArrowsEffectKeyColour(WindowHandle dialog, int32_t mode) {
  return PageBackgroundKeyColour(dialog, mode, kIdBackground);
}
