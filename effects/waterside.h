// Waterside: the text stands above a sheet of water in which its mirror image hangs, rippling in
// rows from the water's far edge to the near edge, the ripple growing towards the viewer. The text
// is the common renderer's still picture; the build crops its bottom rows of background, doubles
// it, shifts its rows by a phase of a sine wave, halves it again and hangs it mirrored below.
// Rows count from the top of a picture; pictures are Packed DIB handles, new ones the caller's.
#pragma once

#include <cstdint>

#include "platform/memory.h"
#include "shell/effect_table.h"

// One frame: the phase of the ripple. The renderer itself draws the same picture for every frame.
struct WatersideFrameParams {
  int32_t frameIndex;
  int32_t frameCount;
};

// A new picture without the bottom rows whose every pixel equals `background` in its low 24 bits;
// row 0 is never tested, so at least one row stays. Null when memory fails.
MovableHandle CropBackgroundRows(MovableHandle picture, uint32_t background);

// The rows of `doubled`, the picture resampled to 200 %, shifted for phase `phase` of `phases`:
// each row counted from the bottom takes the row a sine of the phase away, the amplitude growing
// with the row and the waves crowding at the bottom; a row whose source falls outside keeps its
// own pixels. A new picture of the same size, or null when memory fails.
MovableHandle ShiftRippleRows(MovableHandle doubled, int32_t phase, int32_t phases);
// The ripple: the shifted rows resampled to 50 %, or at full size when that fails. Null when
// memory fails.
MovableHandle MakeRipple(MovableHandle doubled, int32_t phase, int32_t phases);

// A new picture as wide as the wider of the two, `picture` on top and `ripple` mirrored top to
// bottom below it, in the depth of `picture`. Null when memory fails.
MovableHandle JoinMirrored(MovableHandle picture, MovableHandle ripple);

// A frame's delay: from 75 % to just under 125 % of `delay`, drawn by one `rand` from wherever the
// runtime generator stands. A delay too short to spread (below 2) is used as it is, without a draw.
int32_t WatersideDelay(int32_t delay);

// What the frame loop reads from the dialog and the page.
struct WatersideLoopSettings {
  int32_t animated;     // 0: one still frame, phase 0 of 1, with the plain delay
  int32_t delay;        // host units
  int32_t frames;       // phases of the ripple
  uint32_t background;  // the colour whose bottom rows are cropped
};

// Renders the still picture; a new picture or null.
typedef MovableHandle (*WatersideRenderer)(void* renderer, const WatersideFrameParams* params);

// The frame loop: the picture, its crop and its doubled copy are made once, since the picture
// does not change; then each phase's ripple joined below it, appended with its delay, with
// progress after each. Returns 1, or 0 when the render, a frame's copy or an append fails (frames
// appended so far stay in the list). A failed crop, ripple or join leaves that frame unprocessed.
int RunWatersideFrames(BuildContext* context, const WatersideLoopSettings* settings,
                       WatersideRenderer render, void* renderer);

// The effect table's procedures: the still frame at phase 0 as the sample, the build, and the key
// colour from the page's Background colour.
int WatersideEffectPreview(BuildContext* context);
int WatersideEffectBuild(BuildContext* context);
int32_t WatersideEffectKeyColour(WindowHandle dialog, int32_t mode);
