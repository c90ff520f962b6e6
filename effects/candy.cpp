// Candy's state, blobs and frames. The generator's calls while the state is prepared decide the
// picture, in Confetti's order; frames draw none.
#include "effects/candy.h"

#include <cmath>
#include <cstring>

#include "controls/value_controls.h"
#include "effects/confetti.h"
#include "effects/item_choice.h"
#include "effects/item_shadow.h"
#include "effects/key_colour.h"
#include "effects/wrapping_stamp.h"
#include "materials/material_button.h"
#include "shell/crt_random.h"
#include "shell/packed_dib.h"

namespace {

// Page 7417.
constexpr int32_t kIdShadowColour = 826, kIdBackground = 828, kIdOutline = 830,
                  kIdShadowOpacity = 832, kIdFrames = 834, kIdSoftness = 836, kIdShadowOffset = 838,
                  kIdShadowDirection = 840, kIdShadowEnable = 842, kIdOutlineEnable = 843,
                  kIdFillOpacity = 844, kIdDrift = 846, kIdSize = 848, kIdDensity = 850,
                  kIdSeed = 852, kIdColor1 = 854, kIdEnable2 = 864, kIdFillBackground = 869,
                  kIdScroll = 871, kIdWarp = 873;

constexpr double kPi = 3.14159265358979323846;

}  // namespace

int PrepareCandyState(CandyState* state, const CandySettings* settings, int32_t width,
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
  state->scroll = settings->scroll;
  state->shadowGrey = 0x7F7F7F;
  crt::srand(static_cast<uint32_t>(settings->seed));
  state->colorCount = CollectItemColours(settings->colors, settings->enabled, state->colors);
  state->itemCount = settings->density;
  if (state->itemCount < 1) return 0;
  state->itemBlock = MovableAlloc(static_cast<size_t>(state->itemCount) * sizeof(CandyItem));
  state->items = static_cast<CandyItem*>(MovableLock(state->itemBlock));
  if (!state->items) return 0;
  int32_t last = -1;
  for (int32_t i = 0; i < state->itemCount; ++i) {
    CandyItem& item = state->items[i];
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
    // The shadow picture with offset 0 centres the disc in its margin and blurs it: the blob. The
    // larger picture is stamped at the disc's corner, so the blob sits down and right of it. When
    // it cannot be made the sharp disc stands.
    SoftenItemImage(&item.image, 0, settings->warp);
  }
  if (fill) state->fillImage = MaterialFill(fill, width, height);
  return 1;
}

void ReleaseCandyState(CandyState* state) {
  for (int32_t i = 0; state->items && i < state->itemCount; ++i) MovableFree(state->items[i].image);
  if (state->items) MovableUnlock(state->itemBlock);
  MovableFree(state->itemBlock);
  MovableFree(state->fillImage);
  std::memset(state, 0, sizeof(*state));
}

MovableHandle RenderCandyFrame(CandyState* state, int32_t frameNumber) {
  state->frameNumber = frameNumber;
  ScopedBlock frame(DuplicateHandle(state->fillImage));
  ScopedLock target(frame.handle);
  if (!target || state->frames < 1) return nullptr;
  const BitmapInfoHeader* header = reinterpret_cast<const BitmapInfoHeader*>(target.bytes);
  state->width = header->biWidth;
  state->height = header->biHeight;
  const int32_t w = state->width, h = state->height, frames = state->frames;
  const float fr = static_cast<float>(frameNumber) / static_cast<float>(frames);
  // The offsets are subtracted from the item's place: each blob travels `speed` canvas sizes
  // against its offset's growth in one loop, and its sway turns once.
  const int32_t amplitude = static_cast<int32_t>((state->drift / 100.0) * w);
  const int32_t down = static_cast<int32_t>(static_cast<float>(h) * fr);
  const int32_t across = static_cast<int32_t>(fr * static_cast<float>(w));
  for (int32_t i = 0; i < state->itemCount; ++i) {
    CandyItem& item = state->items[i];
    const int32_t sway = static_cast<int32_t>(std::sin(item.phase * kPi / 180) * amplitude);
    int32_t ox = sway, oy = sway;
    switch (state->scroll) {
      case kCandyRight:
        ox = w - across * item.speed - 1;
        break;
      case kCandyLeft:
        ox = across * item.speed - w + 1;
        break;
      case kCandyDown:
        oy = h - down * item.speed - 1;
        break;
      default:
        oy = down * item.speed - h + 1;
        break;
    }
    ScopedLock stamp(item.image);
    if (!stamp || !StampWrapped(target.bytes, stamp.bytes, item.x - ox - item.size / 2,
                                item.y - oy - item.size / 2, item.color, item.opacity))
      return nullptr;
    item.phase = static_cast<float>(item.phase + (1.0 / frames) * 360.0);
  }
  return frame.Release();
}

void ReadCandySettings(WindowHandle dialog, CandySettings* settings) {
  std::memset(settings, 0, sizeof(*settings));
  int translated;
  settings->shadowColor = GetDialogItemInt(dialog, kIdShadowColour, &translated, 0);
  for (int i = 0; i < 5; ++i) {
    settings->colors[i] = GetDialogItemInt(dialog, kIdColor1 + 2 * i, &translated, 0);
    if (i > 0) settings->enabled[i] = DialogGetCheck(DialogItem(dialog, kIdEnable2 + i - 1));
  }
  settings->shadowOpacity = ReadDlgValue(dialog, kIdShadowOpacity);
  settings->shadowOffset = ReadDlgValue(dialog, kIdShadowOffset);
  settings->softness = ReadDlgValue(dialog, kIdSoftness);
  settings->warp = ReadDlgValue(dialog, kIdWarp);
  settings->seed = ReadDlgValue(dialog, kIdSeed);
  settings->fillOpacity = ReadDlgValue(dialog, kIdFillOpacity);
  int32_t scroll = 0;
  if (!DialogPickerValue(DialogItem(dialog, kIdScroll), &scroll)) scroll = 0;
  settings->scroll = scroll;
  settings->drift = ReadDlgValue(dialog, kIdDrift);
  settings->density = ReadDlgValue(dialog, kIdDensity);
  settings->size = ReadDlgValue(dialog, kIdSize);
  settings->frames = ReadDlgValue(dialog, kIdFrames);
}

namespace {

int PrepareCandy(void* state, WindowHandle dialog, int32_t width, int32_t height) {
  CandySettings settings;
  ReadCandySettings(dialog, &settings);
  ScopedButtonMaterial fill(DialogItem(dialog, kIdFillBackground));
  return PrepareCandyState(static_cast<CandyState*>(state), &settings, width, height,
                           fill.material);
}

MovableHandle CandyFrame(void* state, int32_t frameNumber) {
  return RenderCandyFrame(static_cast<CandyState*>(state), frameNumber);
}

void ReleaseCandy(void* state) {
  ReleaseCandyState(static_cast<CandyState*>(state));
}

}  // namespace

const FrameSetEffect kCandyFrameSet = {
    {0, 0, kIdBackground, kIdOutline, 0, kIdShadowOpacity, kIdSoftness, kIdShadowOffset,
     kIdShadowDirection, kIdShadowEnable, kIdOutlineEnable},
    kIdFrames,
    sizeof(CandyState),
    PrepareCandy,
    CandyFrame,
    ReleaseCandy,
    kIdShadowColour,
};

int CandyEffectPreview(BuildContext* context) {
  return FrameSetEffectPreview(context, &kCandyFrameSet);
}

int CandyEffectBuild(BuildContext* context) {
  return FrameSetEffectBuild(context, &kCandyFrameSet);
}

int32_t CandyEffectKeyColour(WindowHandle dialog, int32_t mode) {
  return PageBackgroundKeyColour(dialog, mode, kIdBackground);
}
