// The colour quantiser: every frame of an animation is classified into one colour octree, which is
// reduced to the wanted number of colours; animations with few colours take them exactly. Nodes
// come from zero-filled slabs that are freed together when the run ends. Nothing outlives a call
// but the palette and the count.
#pragma once

#include <cstdint>

#include "platform/memory.h"
#include "shell/effect_table.h"

constexpr int32_t MaxColourNodes = 266817;
constexpr int32_t kNodesPerSlab = 1536;
// The "Memory error" message code, returned when the working record cannot be made.
constexpr int32_t kQuantiseMemoryError = 6;

struct ColourNode {
  double uniqueCount;  // pixels that ended here, weighted by run length
  double redTotal, greenTotal, blueTotal;
  double quantiseError;   // squared distance from the cell's centre, accumulated
  uint32_t colourNumber;  // palette index given at extraction
  uint8_t id;             // which child of its parent, 0 to 7
  uint8_t level;          // 0 for the root
  uint8_t census;         // bit i set while child i is linked
  ColourNode* parent;     // the root is its own parent
  ColourNode* child[8];   // slots are kept after pruning; census says which are live
};

struct ColourOptions {
  int32_t colourCount;
  int32_t treeDepth;   // always 0
  int32_t useWeights;  // always 1
};

struct ColourSlab;

struct ColourCube {
  ColourNode* root;
  int32_t depth;    // present depth of the tree, 2 to 8
  int32_t colours;  // leaves while classifying, survivors while reducing and extracting
  uint8_t* palette;
  double pruningThreshold;  // nodes at or under this error merge in this round
  double nextThreshold;     // smallest error that survived this round
  int32_t nodes;            // live nodes
  int32_t freeNodes;        // nodes left in the newest slab
  ColourNode* nextNode;
  ColourSlab* slabs;  // the newest slab; each links to the one before
  ColourOptions* options;
};

// Quantises the images of every record of `frames` (24-bit pictures), in list order, into
// `palette` (768 bytes, cleared first). `*request` is the wanted count (0 or over 256 mean 256)
// and receives the number of colours found; a request over 256 can receive a count over 256,
// meaning "many", with 256 colours in the palette. Returns 1, 0 when the list or a picture cannot
// be read or a node cannot be made, or kQuantiseMemoryError when the working record cannot be
// made. On failure the palette must not be used.
int32_t QuantiseFrames(int32_t* request, uint8_t* palette, const FrameList* frames);

// The tree operations, on a cube being reduced.
void PruneSubtree(ColourCube* cube, ColourNode* node);
void ReduceNode(ColourCube* cube, ColourNode* node);
// The reduction's rounds from the cube's present nextThreshold on.
void ReduceRounds(ColourCube* cube, int32_t target);
void ExtractPalette(ColourCube* cube, ColourNode* node);
