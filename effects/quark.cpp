// Quark's turning fountain.
#include "effects/quark.h"

#include <cstring>

#include "controls/value_controls.h"
#include "effects/key_colour.h"
#include "effects/rotation_frames.h"
#include "materials/fountain_button.h"

namespace {

// Page 7405.
constexpr int32_t kIdShadow = 320, kIdBackground = 322, kIdOutline = 324, kIdShadowOpacity = 326,
                  kIdSoftness = 328, kIdShadowOffset = 330, kIdShadowDirection = 332,
                  kIdShadowEnable = 334, kIdOutlineEnable = 335, kIdRotation = 338,
                  kIdXOffset = 340, kIdYOffset = 342, kIdInitRotation = 344;

}  // namespace

void BuiltInRainbow(FountainGradient* gradient) {
  std::memset(gradient, 0, sizeof(*gradient));
  InitFountainGradient(gradient, 7);
  gradient->rightColour = 0xFFFFFF;
}

MovableHandle RenderQuarkFrame(const QuarkState* state, int32_t frameNumber) {
  // The description and the colours are made afresh for every frame.
  GradientSpec spec{};
  spec.type = kGradientConical;
  spec.centreX = state->centreX;
  spec.centreY = state->centreY;
  spec.midpoint = 50;
  spec.rotation = state->initialRotation + frameNumber * state->rotation;
  spec.twoColour = 0;
  spec.edgePad = 0;
  FountainGradient fountain;
  BuiltInRainbow(&fountain);
  if (state->hasFountain) std::memcpy(&fountain, &state->fountain, sizeof(fountain));
  return MakeGradientImage(state->width, state->height, &spec, &fountain);
}

int ReadQuarkState(QuarkState* state, WindowHandle dialog, const QuarkFountainIds* ids,
                   int32_t width, int32_t height) {
  if (width < 1 || height < 1) return 0;
  state->width = width;
  state->height = height;
  state->rotation = ReadRotation(dialog, ids->rotation);
  state->centreX = ReadDlgValue(dialog, ids->xOffset) * 2 - 100;
  state->centreY = ReadDlgValue(dialog, ids->yOffset) * 2 - 100;
  state->initialRotation = ReadDlgValue(dialog, ids->initialRotation);
  state->hasFountain = ButtonFountain(DialogItem(dialog, ids->fountain), &state->fountain);
  return 1;
}

MovableHandle QuarkFountainFrame(void* state, int32_t frameNumber) {
  return RenderQuarkFrame(static_cast<QuarkState*>(state), frameNumber);
}

void ReleaseQuarkState(void*) {}

namespace {

int PrepareQuark(void* state, WindowHandle dialog, int32_t width, int32_t height) {
  static constexpr QuarkFountainIds kIds = {kIdRotation, kIdXOffset, kIdYOffset, kIdInitRotation,
                                            kQuarkFountainId};
  return ReadQuarkState(static_cast<QuarkState*>(state), dialog, &kIds, width, height);
}

}  // namespace

const FrameSetEffect kQuarkFrameSet = {
    {0, kIdShadow, kIdBackground, kIdOutline, 0, kIdShadowOpacity, kIdSoftness, kIdShadowOffset,
     kIdShadowDirection, kIdShadowEnable, kIdOutlineEnable},
    0,
    sizeof(QuarkState),
    PrepareQuark,
    QuarkFountainFrame,
    ReleaseQuarkState,
};

int QuarkEffectPreview(BuildContext* context) {
  return FrameSetEffectPreview(context, &kQuarkFrameSet);
}

int QuarkEffectBuild(BuildContext* context) {
  return RotationFrameSetBuild(context, &kQuarkFrameSet, kIdRotation);
}

int32_t QuarkEffectKeyColour(WindowHandle dialog, int32_t mode) {
  return PageBackgroundKeyColour(dialog, mode, kIdBackground);
}
