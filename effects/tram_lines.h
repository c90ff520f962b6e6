// Tram Lines: the finished picture of the text cut into parallel bars that run along their length
// like trams on neighbouring lines, the even bars one way and the odd the other, each wrapping
// round. The bars are rows running sideways, or with Vertical bars columns running up and down.
// A bar moves by the Tile step a frame, rounded so that the frames make exactly one turn: the
// frame after the last is the first again and the loop has no seam.
#pragma once

#include <cstdint>

#include "platform/memory.h"
#include "shell/effect_table.h"

struct TramLinesSettings {
  int32_t bars;      // 2 or more; held to the number of lines across
  int32_t tileStep;  // pixels a frame, 1 or more
  int32_t vertical;  // nonzero: the bars are columns
  int32_t delay;
};

// Frames in one turn along `length` pixels: ceil(length / step), at least 1.
int32_t TramLinesFrameCount(int32_t length, int32_t step);
// The even bars' shift in frame `frame` of `frames`: frame * length / frames rounded half up;
// the odd bars take its negative. `frames` gives `length`, a whole turn.
int32_t TramLinesShift(int32_t length, int32_t frame, int32_t frames);
// Frame `frame` made from `picture` (which stays the caller's); null when memory fails. Bar k
// covers the lines [k * span / bars, (k + 1) * span / bars), truncated.
MovableHandle MakeTramLinesFrame(MovableHandle picture, const TramLinesSettings* settings,
                                 int32_t frame);

// Renders the picture at rest; a new picture or null.
typedef MovableHandle (*TramLinesRenderer)(void* renderer);

// The build: render once, then one turn of frames in order, each lasting Delay, with progress
// after each. Returns 1, or 0 when the render, a frame or an append fails (frames appended so far
// stay in the list).
int RunTramLinesFrames(BuildContext* context, const TramLinesSettings* settings,
                       TramLinesRenderer render, void* renderer);
// The sample: build frame frames / 4, a quarter turn on. Null when any step fails.
MovableHandle MakeTramLinesSample(const TramLinesSettings* settings, TramLinesRenderer render,
                                  void* renderer);

int TramLinesEffectPreview(BuildContext* context);
int TramLinesEffectBuild(BuildContext* context);
int32_t TramLinesEffectKeyColour(WindowHandle dialog, int32_t mode);
