// Zipper: the finished text closes like a zip. The picture is cut into teeth, strips one Leaf
// size wide across its length, that belong by turns to two tapes: the even teeth to one, the odd
// to the other. A pull runs along the text; behind it the teeth stand interlocked at rest, ahead
// of it the two tapes open in a V, the even teeth drawn away to one side and the odd to the
// other, half a pixel for every pixel beyond the pull, until they leave the picture altogether.
// Where a tooth has left, the background shows. For a wide picture the teeth are columns and the
// tapes open up and down; for a picture taller than wide they are rows and open left and right.
// The pull moves fast at first and settles gently; the last frame is the text at rest, which
// holds for the pause.
#pragma once

#include <cstdint>

#include "platform/memory.h"
#include "shell/effect_table.h"

struct ZipperSettings {
  int32_t frames;    // 2 or more: the last is the picture at rest
  int32_t leafSize;  // pixels across a tooth, 1 or more
  int32_t delay, pause;
};

// Where the pull stands in frame `frame` of `frames` along a length of `length` pixels:
// length - length * r * r / (frames - 1)^2 truncated, r = frames - 1 - frame: 0 in the first
// frame, `length` in the last.
int32_t ZipperPull(int32_t length, int32_t frame, int32_t frames);
// How far a tooth whose middle stands at `middle` along the length has been drawn aside while the
// pull stands at `pull`: (middle - pull) / 2 truncated, held to 0 ... span.
int32_t ZipperOpening(int32_t middle, int32_t pull, int32_t span);
// True when the teeth are rows opening sideways: the picture is taller than wide.
bool ZipperRows(int32_t width, int32_t height);
// Frame `frame` made from the text at rest, `picture`, and the same canvas without the text,
// `background` (both stay the caller's, of one size and depth); null when memory fails.
MovableHandle MakeZipperFrame(MovableHandle picture, MovableHandle background,
                              const ZipperSettings* settings, int32_t frame);

// Renders the picture at rest and its background alone into *picture and *background; 1, or 0
// with neither made.
typedef int (*ZipperRenderer)(void* renderer, MovableHandle* picture, MovableHandle* background);

// The build: render once, then the frames in order with progress after each, every one lasting
// Delay and the last, the picture itself, Delay + Pause. Returns 1, or 0 when the render, a frame
// or an append fails (frames appended so far stay in the list).
int RunZipperFrames(BuildContext* context, const ZipperSettings* settings, ZipperRenderer render,
                    void* renderer);
// The sample: build frame (frames - 1) / 2, the zip partly closed. Null when any step fails.
MovableHandle MakeZipperSample(const ZipperSettings* settings, ZipperRenderer render,
                               void* renderer);

int ZipperEffectPreview(BuildContext* context);
int ZipperEffectBuild(BuildContext* context);
int32_t ZipperEffectKeyColour(WindowHandle dialog, int32_t mode);
