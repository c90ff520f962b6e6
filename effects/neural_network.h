// Neural Network: the text stands still and its letters show a grid of glossy coloured balls on a
// flat background; a trail of lit balls walks through the grid in a seeded random order, its
// brightness falling off towards the tail. A frame-set effect of Matrix squared frames: one tile
// of the grid is drawn per frame and tiled over the canvas.
#pragma once

#include <cstdint>

#include "effects/frame_set.h"
#include "platform/memory.h"
#include "shell/effect_table.h"

struct NeuralCell {
  int32_t x, y;  // i % canvas width and i / canvas width; nothing reads them
  int32_t size;
  int32_t level;  // brightness; 64 at rest, 255 at the trail's head, lower (even below 0) behind
  int32_t alpha;  // always 255; never read
  uint32_t color;
};

struct NeuralSettings {
  uint32_t background;
  uint32_t colors[5];
  int32_t colorCount;
  int32_t seed, matrix, shade, glare, density, size;
};

// Private to the frame builder.
struct NeuralState {
  int32_t tileWidth, tileHeight;
  int32_t columns, rows;
  int32_t width, height;  // canvas
  int32_t frameNumber;
  int32_t cellCount;
  int32_t cellSize, cellStep;
  int32_t shade;  // percent
  uint32_t background;
  uint32_t colors[5];
  int32_t colorCount;
  int32_t restLevel;
  int32_t levelStep;
  int32_t glare;
  int32_t trailLength;
  MovableHandle cellBlock, orderBlock;  // locked while the state lives
  NeuralCell* cells;
  int32_t* order;  // a permutation of the cell numbers: the trail's path
};

// Seeds the generator, fills the cells with their colours and shuffles the order. 1, or 0 on
// failure; ReleaseNeuralState frees what was made either way.
int PrepareNeuralState(NeuralState* state, const NeuralSettings* settings, int32_t width,
                       int32_t height);
void ReleaseNeuralState(NeuralState* state);
// One tile of frame `frameNumber`: the trail's head at order[frameNumber]. Null on failure.
MovableHandle RenderNeuralTile(NeuralState* state, int32_t frameNumber);

void ReadNeuralSettings(WindowHandle dialog, NeuralSettings* settings);

extern const FrameSetEffect kNeuralFrameSet;

int NeuralNetworkEffectPreview(BuildContext* context);
int NeuralNetworkEffectBuild(BuildContext* context);
int32_t NeuralNetworkEffectKeyColour(WindowHandle dialog, int32_t mode);
