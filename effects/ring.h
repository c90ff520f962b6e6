// Ring: the text set around a circle that turns. Each character is written with a rotated font at
// its place on the ring: at angle 0 a character stands upright on top, positive angles run
// clockwise, and the whole text spans an arc in proportion to its advances, so a text longer than
// the circumference overlaps itself. The radius is the baseline's distance from the centre.
#pragma once

#include <cstdint>

#include "platform/dialog.h"
#include "platform/font.h"
#include "platform/memory.h"
#include "shell/effect_table.h"

// The frame parameters: a local of the preview or build, whose address is BuildContext.params.
struct RingParams {
  int32_t startAngle;    // degrees
  int32_t currentAngle;  // added to every character's angle; grows by stepAngle each frame
  int32_t stepAngle;     // degrees a frame, signed
  int32_t textHeight;    // the font's cell height
  int32_t radius;
  int32_t ringWidth, ringHeight;  // both (textHeight + radius) * 2
  int32_t fontSize;
  int32_t bold, italic, antialias;
  int32_t characterSpace;
  int32_t textLength;  // bytes
  int32_t fillOpacity, shadowOpacity;
  char faceName[260];
  LayoutFont font;         // made once and kept while the params live
  MovableHandle text;      // the text, without a space appended
  MovableHandle advances;  // MeasureText's table, one entry a byte and 16 spare
};

// Reads the page and the main dialog's font into a zeroed `params`, makes the font and measures
// the text. Returns 1, or 0 with everything freed.
int PrepareRing(WindowHandle dialog, RingParams* params);
void ReleaseRing(RingParams* params);
// The ring's characters drawn at grey `level` on black: a new 8-bit mask of the ring's size, or
// null.
MovableHandle RenderRingMask(const RingParams* params, int32_t level);
// The number of frames of an animated build: one turn, its start not repeated.
int32_t RingFrameCount(int32_t stepAngle);

int RingEffectPreview(BuildContext* context);
int RingEffectBuild(BuildContext* context);
int32_t RingEffectKeyColour(WindowHandle dialog, int32_t mode);
