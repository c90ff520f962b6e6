// Unplugged TV: the text shows in turn in up to five fills, and each picture switches off the way
// an old television does: it collapses to a horizontal line, the line shrinks to a dot, the dot
// swells once and dies, and the next picture stands revealed behind it; after the last fill the
// first comes back, so the build loops. No random numbers: the animation follows the settings.
// All text is rendered once, when the build starts; a frame is one resample and two composites.
#pragma once

#include <cstdint>

#include "platform/dialog.h"
#include "platform/memory.h"
#include "shell/effect_table.h"

constexpr int32_t kUnpluggedTvFills = 5;

// The build's state, a zeroed local of the build procedure; the renderer reaches it through
// BuildContext.params.
struct UnpluggedTvState {
  MovableHandle background;                   // the Background material at canvas size
  MovableHandle pictures[kUnpluggedTvFills];  // each fill's rendered text frame
  MovableHandle fills[kUnpluggedTvFills];     // each fill's material at canvas size
  int32_t count;                              // fills in use, 2 to 5
  int32_t current;                            // the fill now switching off
  int32_t squeezeFrames, lineFrames, dotFrames;
  int32_t squeezeDelay, lineDelay, dotDelay;
  int32_t phase;  // 0 squeeze, 1 line, 2 dot
  int32_t step;   // frame within the phase
  int32_t alpha;  // Alpha transparency is checked
  int32_t width, height;
  int32_t squareDot;
  uint32_t dotColours[kUnpluggedTvFills];
  int32_t useFills;  // 1 during a build: the renderer takes fills[count] as its fill
};

// The four configuration-file settings of the swelling dot.
struct SwellFactors {
  int32_t size;      // percent of the canvas height at the dot's largest
  int32_t edge;      // percent of the dot colour at its rim
  int32_t delay;     // percent of Delay for a dot frame
  int32_t softness;  // the rim's softening, in tenths of a pixel
};

// Reads the swell settings, with their defaults where a setting is missing.
SwellFactors ReadSwellFactors();
// Phase frame counts and delays from Frames and Delay: a third of Frames for each phase, at least
// 8; no dot frames when the dot has size factor 0.
void SetUnpluggedTvTiming(UnpluggedTvState* state, int32_t frames, int32_t delay,
                          const SwellFactors* swell);

// The mean colour of the pixels with alpha 255 (all pixels of a 24-bit picture), 0x00BBGGRR;
// 0xFFFFFF when the picture can't be locked.
uint32_t PictureMeanColour(MovableHandle picture);
// The dot of frame `step` of the dot phase: a 32-bit picture whose colour brightens from the rim
// to `colour` at the centre and whose alpha is the softened shape. Null on failure.
MovableHandle MakeSwellDot(uint32_t colour, int32_t canvasHeight, int32_t dotFrames, int32_t step,
                           int32_t squareDot, const SwellFactors* swell);
// Lays `source` over `target` (both locked, 24 or 32 bits), centred: alpha the larger of the two,
// each channel target * (255 - a) / 255 + source * a / 255, terms truncated apart.
void OverlayCentred(void* target, const void* source);
// The frame of state->current, phase and step: the next picture with the shrinking current one
// over it, flattened onto the background unless alpha is kept. Null on failure.
MovableHandle MakeUnpluggedTvFrame(const UnpluggedTvState* state);
// Frees every image of the state and zeroes it.
void FreeUnpluggedTvState(UnpluggedTvState* state);

int UnpluggedTvEffectPreview(BuildContext* context);
int UnpluggedTvEffectBuild(BuildContext* context);
int32_t UnpluggedTvEffectKeyColour(WindowHandle dialog, int32_t mode);
