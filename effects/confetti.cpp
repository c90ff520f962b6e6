// Confetti's state, discs and frames. The generator's calls while the state is prepared decide the
// picture; frames draw none.
#include "effects/confetti.h"

#include <cstring>

#include "controls/value_controls.h"
#include "effects/item_choice.h"
#include "effects/item_shadow.h"
#include "effects/key_colour.h"
#include "imaging/resampler.h"
#include "materials/material_button.h"
#include "platform/surface.h"
#include "shell/crt_random.h"
#include "shell/packed_dib.h"

namespace {

// Page 7416.
constexpr int32_t kIdShadowColour = 772, kIdBackground = 774, kIdOutline = 776,
                  kIdShadowOpacity = 778, kIdFrames = 780, kIdSoftness = 782, kIdShadowOffset = 784,
                  kIdShadowDirection = 786, kIdShadowEnable = 788, kIdOutlineEnable = 789,
                  kIdFillOpacity = 790, kIdDrift = 792, kIdSize = 794, kIdDensity = 796,
                  kIdSeed = 798, kIdColor1 = 800, kIdEnable2 = 810, kIdFillBackground = 815;

}  // namespace

MovableHandle DrawConfettiDisc(int32_t side, int32_t level) {
  RenderSurface surface;
  if (!CreateRenderSurface(4 * side, 4 * side, &surface)) return nullptr;
  const int32_t grey = level & 0xFF;
  const SurfacePaint paint = {grey << 16 | grey << 8 | grey, kSurfaceNone, 0};
  SurfaceEllipse(&surface, &surface.rect, &paint);
  ReleaseRenderSurface(&surface, kSurfaceKeepImage);
  MovableHandle small = ResampleByPercent(surface.handle, 25, 25);
  if (!small) return surface.handle;
  MovableFree(surface.handle);
  return small;
}

int PrepareConfettiState(ConfettiState* state, const ConfettiSettings* settings, int32_t width,
                         int32_t height, Material* fill) {
  std::memset(state, 0, sizeof(*state));
  if (width < 1 || height < 1) return 0;
  state->width = width;
  state->height = height;
  state->frames = settings->frames;
  state->size = settings->size;
  state->drift = settings->drift;
  state->shadowColor = settings->shadowColor;
  state->shadowOpacity = settings->shadowOpacity;
  crt::srand(static_cast<uint32_t>(settings->seed));
  state->colorCount = CollectItemColours(settings->colors, settings->enabled, state->colors);
  state->itemCount = settings->density;
  if (state->itemCount < 1) return 0;
  state->itemBlock = MovableAlloc(static_cast<size_t>(state->itemCount) * sizeof(ConfettiItem));
  state->items = static_cast<ConfettiItem*>(MovableLock(state->itemBlock));
  if (!state->items) return 0;
  int32_t last = -1;
  for (int32_t i = 0; i < state->itemCount; ++i) {
    ConfettiItem& item = state->items[i];
    item.x = crt::rand() % width;
    item.y = crt::rand() % height;
    item.size = settings->size;
    item.speed = i % 3 == 0 ? 1 : i % 3 == 1 ? 2 : 4;
    item.alpha = 255;
    item.phase = static_cast<float>(crt::rand() % 360);
    item.opacity = settings->fillOpacity;
    item.color = state->colors[DrawItemIndex(state->colorCount, &last)];
    item.image = DrawConfettiDisc(settings->size, 255);
    if (!item.image) return 0;
    if (settings->shadowOpacity > 0) {
      item.shadow = DrawConfettiDisc(settings->size, settings->shadowOpacity);
      if (!item.shadow) return 0;
      SoftenItemImage(&item.shadow, settings->shadowOffset, settings->softness);
    }
  }
  if (fill) state->fillImage = MaterialFill(fill, width, height);
  return 1;
}

void ReleaseConfettiState(ConfettiState* state) {
  for (int32_t i = 0; state->items && i < state->itemCount; ++i) {
    MovableFree(state->items[i].image);
    MovableFree(state->items[i].shadow);
  }
  if (state->items) MovableUnlock(state->itemBlock);
  MovableFree(state->itemBlock);
  MovableFree(state->fillImage);
  std::memset(state, 0, sizeof(*state));
}

MovableHandle RenderConfettiFrame(ConfettiState* state, int32_t frameNumber) {
  state->frameNumber = frameNumber;
  ScopedBlock frame(DuplicateHandle(state->fillImage));
  ScopedLock target(frame.handle);
  if (!target || state->frames < 1) return nullptr;
  // The canvas is the copy's own size.
  const BitmapInfoHeader* h = reinterpret_cast<const BitmapInfoHeader*>(target.bytes);
  state->width = h->biWidth;
  state->height = h->biHeight;
  if (!StampFallingItems(target.bytes, state->items, state->itemCount, frameNumber, state->frames,
                         state->width, state->height, state->drift, state->shadowColor,
                         state->shadowOpacity))
    return nullptr;
  return frame.Release();
}

void ReadConfettiSettings(WindowHandle dialog, ConfettiSettings* settings) {
  std::memset(settings, 0, sizeof(*settings));
  int translated;
  for (int i = 0; i < 5; ++i) {
    settings->colors[i] = GetDialogItemInt(dialog, kIdColor1 + 2 * i, &translated, 0);
    if (i > 0) settings->enabled[i] = DialogGetCheck(DialogItem(dialog, kIdEnable2 + i - 1));
  }
  settings->shadowColor = GetDialogItemInt(dialog, kIdShadowColour, &translated, 0);
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

int PrepareConfetti(void* state, WindowHandle dialog, int32_t width, int32_t height) {
  ConfettiSettings settings;
  ReadConfettiSettings(dialog, &settings);
  ScopedButtonMaterial fill(DialogItem(dialog, kIdFillBackground));
  return PrepareConfettiState(static_cast<ConfettiState*>(state), &settings, width, height,
                              fill.material);
}

MovableHandle ConfettiFrame(void* state, int32_t frameNumber) {
  return RenderConfettiFrame(static_cast<ConfettiState*>(state), frameNumber);
}

void ReleaseConfetti(void* state) {
  ReleaseConfettiState(static_cast<ConfettiState*>(state));
}

}  // namespace

const FrameSetEffect kConfettiFrameSet = {
    {0, 0, kIdBackground, kIdOutline, 0, kIdShadowOpacity, kIdSoftness, kIdShadowOffset,
     kIdShadowDirection, kIdShadowEnable, kIdOutlineEnable},
    kIdFrames,
    sizeof(ConfettiState),
    PrepareConfetti,
    ConfettiFrame,
    ReleaseConfetti,
    kIdShadowColour,
};

int ConfettiEffectPreview(BuildContext* context) {
  return FrameSetEffectPreview(context, &kConfettiFrameSet);
}

int ConfettiEffectBuild(BuildContext* context) {
  return FrameSetEffectBuild(context, &kConfettiFrameSet);
}

int32_t ConfettiEffectKeyColour(WindowHandle dialog, int32_t mode) {
  return PageBackgroundKeyColour(dialog, mode, kIdBackground);
}
