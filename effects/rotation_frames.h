// The Rotation combo of the turning effects and the frame count it gives. The combo lists the
// degrees per frame; every entry divides 360, so 360 / |rotation| frames make one whole turn and
// the loop closes without a seam.
#pragma once

#include <cstdint>

#include "effects/frame_set.h"
#include "platform/dialog.h"
#include "shell/effect_table.h"

// The combo's rows are the page tables' kRotationRows; the setting stores the row index.
// The control's text as a signed integer; 0 (no number) reads as 10.
int32_t ReadRotation(WindowHandle dialog, int32_t id);
// 360 / |rotation|, integer division.
int32_t RotationFrameCount(int32_t rotation);

// The frame loop of one turn: RotationFrameCount(rotation) frames read from combo `rotationId`
// (one with the animate check off), each with the Delay, drawn by `render`. Returns 1, or 0 with
// the context's picture freed.
int RunRotationFrames(BuildContext* context, int32_t rotationId, FrameSetRenderer render,
                      void* renderer);
// The build of a frame-set effect whose loop is one turn: the frame loop with
// RotationFrameCount(rotation) frames, read from combo `rotationId`.
int RotationFrameSetBuild(BuildContext* context, const FrameSetEffect* effect,
                          int32_t rotationId);
