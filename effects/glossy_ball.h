// The glossy ball of the grid effects: concentric ellipses from the rim colour to the body colour,
// their tops moving in half as fast so the bright centre sits high, an optional white glint, all
// drawn at `scale` times the size and reduced, with a disc as alpha.
#pragma once

#include <cstdint>

#include "platform/memory.h"

struct BallPaint {
  uint32_t body;        // the colour at the centre
  uint32_t rim;         // the colour at the edge
  uint32_t background;  // behind the ball, where the disc's alpha is 0
  int32_t glare;        // the glint's grey level; no glint at 0 or below
};

// A new 32-bit picture of width by height whose alpha is the disc, drawn at `scale` (2 or 4)
// times the size; or null.
MovableHandle DrawGlossyBall(int32_t width, int32_t height, int32_t scale, const BallPaint* paint);

// Blends the locked 32-bit `ball` into the locked 24 or 32-bit `target` with its top-left pixel at
// (x, y), wrapped around the target's edges, by its own alpha faded to `level`:
// a = (alpha * level) / 255 clamped to 0 to 255, then out = (ball * a) / 255 + (old * (255 - a))
// / 255 per channel, each term truncated. Level 255 stamps the ball as it is. Returns 1, or 0 for
// other depths.
int StampBallWrapped(void* target, const void* ball, int32_t x, int32_t y, int32_t level);
