// Plain versions of the texture generators, written step by step from the description with the
// per-pixel accessors and no precomputation. They share only the transform (tested on its own
// against a direct sum) and the runtime generator with the product code.
#pragma once

#include <cstdint>
#include <random>

#include "materials/texture_item.h"
#include "platform/memory.h"

MovableHandle RefFractal(const TextureItem* item, int32_t layers);
MovableHandle RefCraters(const TextureItem* item);
// `noiseSeed` is the seed the noise tables are made from.
MovableHandle RefPerturbation(const TextureItem* item, uint32_t noiseSeed);

// A record of `type` with random parameters in the ranges the dialog gives, and a size.
TextureItem RandomTextureItem(std::mt19937& rng, int32_t type, int32_t width, int32_t height);
