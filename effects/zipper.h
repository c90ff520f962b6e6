// Zipper: the finished picture of the text cut into teeth, strips one Leaf size across, that
// slide in from opposite sides, the even teeth one way and the odd the other, pass between each
// other and close on the text at rest, which then holds for the pause. The teeth are rows moving
// sideways, or columns moving up and down when the picture is taller than wide. Each tooth is the
// picture's own strip shifted round cyclically; the shift shrinks with the square of the frames
// left, so the zip closes fast and settles gently.
#pragma once

#include <cstdint>

#include "platform/memory.h"
#include "shell/effect_table.h"

struct ZipperSettings {
  int32_t frames;    // 2 or more: the last is the picture at rest
  int32_t leafSize;  // pixels across a tooth, 1 or more
  int32_t delay, pause;
};

// The shift of the even teeth in frame `frame` of `frames` along a length of `length` pixels:
// 3 * length * r * r / (8 * (frames - 1)^2) truncated, r = frames - 1 - frame; the odd teeth take
// its negative. Three eighths of a turn in frame 0, so that the two sets already stand apart and
// interleaved (half a turn would put them in the same place), and 0 in the last.
int32_t ZipperShift(int32_t length, int32_t frame, int32_t frames);
// True when the teeth are columns: the picture is taller than wide.
bool ZipperColumns(int32_t width, int32_t height);
// Frame `frame` made from `picture` (which stays the caller's); null when memory fails.
MovableHandle MakeZipperFrame(MovableHandle picture, const ZipperSettings* settings, int32_t frame);

// Renders the picture at rest; a new picture or null.
typedef MovableHandle (*ZipperRenderer)(void* renderer);

// The build: render once, then the frames in order with progress after each, every one lasting
// Delay and the last, the picture itself, Delay + Pause. Returns 1, or 0 when the render, a frame
// or an append fails (frames appended so far stay in the list).
int RunZipperFrames(BuildContext* context, const ZipperSettings* settings, ZipperRenderer render,
                    void* renderer);
// The sample: build frame (frames - 1) / 2, the teeth half closed. Null when any step fails.
MovableHandle MakeZipperSample(const ZipperSettings* settings, ZipperRenderer render,
                               void* renderer);

int ZipperEffectPreview(BuildContext* context);
int ZipperEffectBuild(BuildContext* context);
int32_t ZipperEffectKeyColour(WindowHandle dialog, int32_t mode);
