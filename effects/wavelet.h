// Wavelet: the text stands still and its letters show a grid of small glossy balls in seeded
// random colours, faded in and out against the background by a sine wave running across the
// grid. A frame-set effect: every ball is drawn once; each frame fades and stamps them all.
#pragma once

#include <cstdint>

#include "effects/frame_set.h"
#include "platform/memory.h"
#include "shell/effect_table.h"

struct WaveletCell {
  int32_t x, y;  // pixel position: column * Size, row * Size
  int32_t size;
  int32_t level;  // set for each frame; starts at 255
  int32_t alpha;  // always 255; never read
  uint32_t color;
  MovableHandle image;  // the ball, 32 bits with the disc as alpha
};

struct WaveletSettings {
  uint32_t background;
  uint32_t colors[5];
  int32_t colorCount;
  int32_t wavelength;  // the combo's selection
  int32_t scroll;      // the Scroll picker
  int32_t seed, amplitude, frames, shade, glare, size;
};

// Private to the frame builder.
struct WaveletState {
  int32_t width, height;  // canvas
  int32_t columns, rows;
  int32_t frameNumber;
  int32_t frames;
  int32_t cellSize;
  int32_t shade;
  int32_t reverse;  // the wave runs the other way round
  uint32_t background;
  uint32_t colors[5];
  int32_t colorCount;
  int32_t glare;
  float amplitude;  // Amplitude / 100
  MovableHandle cellBlock;  // locked while the state lives
  WaveletCell* cells;
  int32_t cellCount;
  int32_t waves;  // 1 to 8 whole waves across the grid
};

// The number of waves for a Wavelength selection: 1, 2, 4 or 8; 8 beyond the list, 1 below it.
int32_t WaveletWaves(int32_t selection);
// Seeds the generator and draws every cell's colour and ball. 1, or 0 on failure;
// ReleaseWaveletState frees what was made either way.
int PrepareWaveletState(WaveletState* state, const WaveletSettings* settings, int32_t width,
                        int32_t height);
void ReleaseWaveletState(WaveletState* state);
// The fade level of column `column` in frame `frameNumber`; it may pass 255 on a crest.
int32_t WaveletLevel(const WaveletState* state, int32_t column, int32_t frameNumber);
// Frame `frameNumber`: the background with every ball stamped at its level. Null on failure.
MovableHandle RenderWaveletFrame(WaveletState* state, int32_t frameNumber);

void ReadWaveletSettings(WindowHandle dialog, WaveletSettings* settings);

extern const FrameSetEffect kWaveletFrameSet;

int WaveletEffectPreview(BuildContext* context);
int WaveletEffectBuild(BuildContext* context);
int32_t WaveletEffectKeyColour(WindowHandle dialog, int32_t mode);
