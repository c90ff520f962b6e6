// Column warps: a pulse of stretch values, one per column of a picture enlarged four times, and
// the warp that stretches each column it touches vertically about the picture's centre line.
// Columns the pulse leaves at 0 are copied as they are. Pictures are Packed DIBs of 8, 24 or 32
// bits; an 8-bit picture is worked on by its index values, as grey masks are meant to be.
#pragma once

#include <cstdint>

#include "platform/memory.h"

// Wave entries past the last column of the enlarged picture: a picture wider than the canvas (an
// outline ring) reads the entry at `length` for all its further columns.
constexpr int32_t kPulseWaveSlack = 16;

// A new zero-filled block of 4 * canvasWidth + kPulseWaveSlack floats holding a half sine
// `wavelength` percent of that length wide, starting at step `index` of `steps` along it and cut
// off at its end; null when memory fails. Step `steps` puts the pulse past the end: all zero.
MovableHandle MakePulseWave(int32_t canvasWidth, int32_t wavelength, int32_t steps, int32_t index);

// Stretches one column of `height` pixels by `percent` (100 to 199) into `target`, zeroed, of
// 2 * height pixels. `column` holds height + 1 pixels, the last 0. Each channel of a pixel is
// interpolated on its own, with truncating divisions; past `height` only the rows where a source
// pixel lands are written.
void StretchColumn(const uint32_t* column, int32_t height, int32_t percent, uint32_t* target);

// What the frames of one build share for each picture they warp: a copy of the picture, its
// enlargement and that enlargement shrunk back. The frames warp the same layers again and again,
// and a pulse reaches only some columns: the rest of a warp is the shrunk-back picture. The owner
// zero-fills it and frees it with ReleaseWarpCache.
constexpr int32_t kWarpCacheSlots = 8;
struct WarpCacheSlot {
  MovableHandle picture;
  MovableHandle enlarged;
  MovableHandle restored;
};
struct WarpCache {
  WarpCacheSlot slots[kWarpCacheSlots];
  int32_t next;  // the slot a new picture takes, round the table
};
void ReleaseWarpCache(WarpCache* cache);

// The picture enlarged to 400 %, every column x with a positive wave[min(x, length)] stretched by
// 100 plus that value times `waveHeight` and laid centred over its own place, then shrunk to 25 %:
// a new picture of the size of `image`, or null. `image` stays the caller's. With a `cache` (or
// null), a picture seen before is warped from its slot, the same bytes for less work.
MovableHandle WarpColumns(MovableHandle image, const float* wave, int32_t length,
                          int32_t waveHeight, WarpCache* cache);
