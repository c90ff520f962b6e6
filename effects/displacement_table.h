// Per-frame displacement tables: one (x, y) pair of signed 32-bit pixels per frame, worked out
// before the first frame so that a shaking effect draws each frame at its entry. Random modes take
// their numbers from the runtime-compatible generator seeded here, so a seed always gives the same
// table; the other modes are closed curves. The table is a movable block the caller frees.
#pragma once

#include <cstdint>

#include "platform/memory.h"

// The ways a table is filled, the rows of the "Mode:" box; anything outside 0 to 5 leaves the
// table at zero.
enum DisplacementMode : int32_t {
  kDisplaceNervous = 0,   // random pairs in the frames' order
  kDisplaceHappy = 1,     // random pairs, smallest products of |x| and |y| first
  kDisplaceCalm = 2,      // a sine on each axis, y at `ratio` times the rate of x
  kDisplaceOrbitCw = 3,   // one clockwise turn
  kDisplaceOrbitCcw = 4,  // one counter-clockwise turn
  kDisplaceInfinity = 5,  // a figure of eight
  kDisplaceStill = 6,     // every row from 6 on: no movement
};

struct DisplacementSettings {
  int32_t frames;     // entries, at least 1
  int32_t seed;       // for the random modes
  int32_t mode;       // DisplacementMode
  int32_t hDisplace;  // horizontal reach, at least 1
  int32_t vDisplace;  // vertical reach, at least 1
  int32_t ratio;      // the calm mode's vertical rate
};

struct DisplacementEntry {
  int32_t x, y;
  bool operator==(const DisplacementEntry&) const = default;
};
static_assert(sizeof(DisplacementEntry) == 8, "a table entry is two 32-bit values");

// A new zero-filled block of `frames` entries filled by the mode, or null when memory fails or a
// count or reach is below 1. The random modes reseed the generator with `seed` first.
MovableHandle MakeDisplacementTable(const DisplacementSettings* settings);

// The order of the happy mode: |y| * |x| of `a` less that of `b`, so small movements come first.
int CompareRattleEntries(const void* a, const void* b);
