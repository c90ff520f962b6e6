// Item shadows: the soft shadow picture of a small item of a frame set (an arrow, a star, a disc),
// stamped under the item with the wrapping stamp. The picture is the item moved down and right by
// the shadow offset on a black field with a margin that grows with the softness, dimmed and then
// box-blurred. With offset 0 the item is centred in the margin instead, which turns the step into
// a plain blur of the item.
#pragma once

#include <cstdint>

#include "platform/memory.h"

// The margin added to each side's length for softness v and offset o: o when v is 0; o + 1 + v / 10
// for v up to 20; o + 1 + v / 5 up to 40; o + 1 + v up to 60; o + 1 + 5 * v beyond (and below 0).
int32_t ItemShadowPad(int32_t offset, int32_t softness);

// A new picture of the size of `source` plus the margin, of its depth and colour table: black, with
// `source` copied at (offset, offset), or at (pad / 2, pad / 2) when offset is 0. Below opacity
// 255 every channel (the index, at 8 bits or fewer) is scaled by opacity / 255, truncated. Softness
// above 0 box-blurs it with strength softness + 2; where the blur declines (strengths below 6,
// depths below 24) or fails the sharp picture stands. Null when no picture can be made.
MovableHandle ItemShadowImage(MovableHandle source, int32_t offset, int32_t softness,
                              int32_t opacity);
// Replaces *image by ItemShadowImage(*image, offset, softness, 255), freeing the old picture; when
// that cannot be made *image stays as it was, so an item keeps a sharp shadow rather than none.
void SoftenItemImage(MovableHandle* image, int32_t offset, int32_t softness);
