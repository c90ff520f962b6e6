// Stars: the text stands still and its letters show five-pointed stars in random colours falling
// through the Fill background, swaying from side to side, each over a soft shadow of its own. A
// frame-set effect shaped like Snow: the stars and their shadows are drawn once from one seeded
// random sequence and stamped, wrapped, into every frame of the loop.
#pragma once

#include <cstdint>

#include "effects/frame_set.h"
#include "materials/material.h"
#include "platform/memory.h"
#include "shell/effect_table.h"

// One falling item with a shadow: a star here, a disc in Confetti.
struct StarItem {
  int32_t x, y;     // start position
  int32_t size;     // the Size control; the drawn picture may be smaller
  int32_t speed;    // 1, 2 or 4: canvas heights fallen in one loop
  int32_t alpha;    // always 255; nothing reads it
  int32_t opacity;  // the Fill opacity
  float phase;      // degrees, of the sway
  uint32_t color;
  MovableHandle image;   // white on black; its blue channel is the coverage
  MovableHandle shadow;  // its shadow picture, or null
};

struct StarsSettings {
  uint32_t colors[5];
  int32_t enabled[5];  // [1] to [4]: the Enable checks of colours 2 to 5
  int32_t variableSizes;
  int32_t shadowOpacity, shadowOffset, softness;
  int32_t seed, fillOpacity, drift, density, size, frames;
};

struct StarsState {
  int32_t width, height;
  int32_t frameNumber;
  int32_t frames;
  int32_t size, drift;
  uint32_t colors[5];
  int32_t colorCount;
  int32_t sizeSteps[5];  // percent sizes by star number, with Variable sizes on
  MovableHandle starBlock;
  StarItem* stars;
  int32_t starCount;
  MovableHandle fillImage;
};

int PrepareStarsState(StarsState* state, const StarsSettings* settings, int32_t width,
                      int32_t height, Material* fill);
void ReleaseStarsState(StarsState* state);
// A new pentagram of side `side` in grey `level` on black, drawn at twice the size and halved (left
// doubled when halving fails). Null when no surface can be made.
MovableHandle DrawStar(int32_t side, int32_t level);
MovableHandle RenderStarsFrame(StarsState* state, int32_t frameNumber);

// Stamps frame `frameNumber` of `frames` of falling items into the locked `target` of width by
// height: each item swayed by its phase (the drift negated, as for snow), its shadow first in
// `shadowColour` at the smaller of its opacity and `shadowOpacity`, then the item in its colour;
// each phase then advances by one frame. 1, or 0 when a stamp fails.
int StampFallingItems(void* target, StarItem* items, int32_t count, int32_t frameNumber,
                      int32_t frames, int32_t width, int32_t height, int32_t drift,
                      uint32_t shadowColour, int32_t shadowOpacity);

void ReadStarsSettings(WindowHandle dialog, StarsSettings* settings);

extern const FrameSetEffect kStarsFrameSet;

int StarsEffectPreview(BuildContext* context);
int StarsEffectBuild(BuildContext* context);
int32_t StarsEffectKeyColour(WindowHandle dialog, int32_t mode);
