// The six texture generators and their table. Each takes a TextureItem and returns a new 24-bit
// Packed DIB of the size in its `rect` (right - left by bottom - top), or null.
//
// The generators are not re-entrant. They draw from the one process-wide stream of the runtime
// generator (shell/crt_random.h), which each reseeds, and Perturbation keeps its noise tables in
// process-wide variables (materials/texture_perturbation.cpp) that the first Perturbation of the
// process fixes. Everything runs on the one user-interface thread.
#pragma once

#include "materials/texture_item.h"
#include "platform/memory.h"

using TextureGenerator = MovableHandle (*)(const TextureItem* item);

struct TextureGeneratorRow {
  const char* name;  // as the Type combo shows it
  TextureGenerator generate;
};

// Indexed by TextureType.
extern const TextureGeneratorRow TextureGeneratorTable[kTextureTypeCount];

// The generator of the item's type; null when the type is outside the table.
MovableHandle GenerateTexture(const TextureItem* item);

// The fractals of one to four layers, each coloured by its ForeColour over BackColour.
MovableHandle GenerateFractal2(const TextureItem* item);
MovableHandle GenerateFractal3(const TextureItem* item);
MovableHandle GenerateFractal4(const TextureItem* item);
MovableHandle GenerateFractal5(const TextureItem* item);
// A cratered surface lit from the side, ForeColour[0] over BackColour.
MovableHandle GenerateCraters(const TextureItem* item);
// Banded gradient noise with bubbles, coloured by the three curves.
MovableHandle GeneratePerturbation(const TextureItem* item);

// The largest MatrixSize a fractal accepts: a mesh of 4096 by 4096 takes 128 MB.
constexpr int32_t kMaxFractalMesh = 4096;
// The fractal's mesh side for a MatrixSize: the power of two at or above it, at least 2. 0 when
// the mesh would be below 32, where the byte map (at least 32 by 32) would read past it, or
// when MatrixSize is above kMaxFractalMesh: the fractal then fails rather than invent a picture.
int32_t FractalMesh(int32_t matrixSize);

// The seed that fixed Perturbation's noise tables, in *seed, and 1; 0 while they are unmade.
int PerturbationNoiseSeed(uint32_t* seed);
