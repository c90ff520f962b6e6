// Quark's turning fountain.
#include "effects/quark.h"

#include <cstring>

#include "controls/value_controls.h"
#include "effects/key_colour.h"
#include "effects/rotation_frames.h"

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

namespace {

int PrepareQuark(void* state, WindowHandle dialog, int32_t width, int32_t height) {
  QuarkState* s = static_cast<QuarkState*>(state);
  if (width < 1 || height < 1) return 0;
  s->width = width;
  s->height = height;
  s->rotation = ReadRotation(dialog, kIdRotation);
  // The offsets' range 1 to 99 becomes -98 to 98 with 50 in the middle.
  s->centreX = ReadDlgValue(dialog, kIdXOffset) * 2 - 100;
  s->centreY = ReadDlgValue(dialog, kIdYOffset) * 2 - 100;
  s->initialRotation = ReadDlgValue(dialog, kIdInitRotation);
  s->hasFountain = 0;  // the Fountain button holds no gradient of its own yet
  return 1;
}

MovableHandle QuarkFrame(void* state, int32_t frameNumber) {
  return RenderQuarkFrame(static_cast<QuarkState*>(state), frameNumber);
}

void ReleaseQuark(void*) {}

}  // namespace

const FrameSetEffect kQuarkFrameSet = {
    {0, kIdShadow, kIdBackground, kIdOutline, 0, kIdShadowOpacity, kIdSoftness, kIdShadowOffset,
     kIdShadowDirection, kIdShadowEnable, kIdOutlineEnable},
    0,
    sizeof(QuarkState),
    PrepareQuark,
    QuarkFrame,
    ReleaseQuark,
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
