// Small pictures for tests: random Packed DIBs from the runtime's generator, and byte comparison
// of two pictures' pixels.
#pragma once

#include <cstdint>

#include "platform/memory.h"

// A width by height picture of `depth` bits (8 gets the grey table) with every pixel byte drawn
// from a generator seeded with `seed`.
MovableHandle RandomImage(int32_t width, int32_t height, int32_t depth, uint32_t seed);
// Nonzero when both blocks have the same size and bytes.
int SameBlocks(MovableHandle a, MovableHandle b);
