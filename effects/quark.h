// Quark: the text stands still and its letters show a multi-colour conical fountain turning about
// a chosen point. A frame-set effect whose frame count comes from the Rotation combo; it draws no
// random numbers.
#pragma once

#include <cstdint>

#include "effects/frame_set.h"
#include "materials/gradient.h"
#include "shell/effect_table.h"

struct QuarkState {
  int32_t width, height;  // canvas
  int32_t centreX, centreY;  // -98 to 98
  int32_t initialRotation;
  int32_t rotation;          // degrees per frame, signed
  FountainGradient fountain;  // the colours: the built-in rainbow or the page's gradient
  int32_t hasFountain;        // 1 when `fountain` came from the page
};

// The built-in rainbow: seven markers from red to purple between black and white.
void BuiltInRainbow(FountainGradient* gradient);
// Frame `frameNumber`: the fountain at the canvas size, turned to the initial rotation plus
// frameNumber steps of the rotation (not reduced to one turn). Null on failure.
MovableHandle RenderQuarkFrame(const QuarkState* state, int32_t frameNumber);

// The page controls that place and turn the fountain: the Rotation combo, the two offset spins and
// the initial rotation spin, and the fountain button whose gradient it shows. Quark and Quark
// Outline each name their own.
struct QuarkFountainIds {
  int32_t rotation, xOffset, yOffset, initialRotation, fountain;
};
// Quark's Fountain button. Quark Outline has none of its own and shows the gradient of this one.
constexpr int32_t kQuarkFountainId = 336;
// Fills `state` from those controls for a width by height canvas; the offsets' range 1 to 99
// becomes a centre of -98 to 98, and the colours are the fountain button's gradient when it holds
// one. 1, or 0 for an empty canvas.
int ReadQuarkState(QuarkState* state, WindowHandle dialog, const QuarkFountainIds* ids,
                   int32_t width, int32_t height);
// A frame set's frame and release procedures on a QuarkState.
MovableHandle QuarkFountainFrame(void* state, int32_t frameNumber);
void ReleaseQuarkState(void* state);

extern const FrameSetEffect kQuarkFrameSet;

int QuarkEffectPreview(BuildContext* context);
int QuarkEffectBuild(BuildContext* context);
int32_t QuarkEffectKeyColour(WindowHandle dialog, int32_t mode);
