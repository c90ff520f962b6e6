// The wrapping stamp: a small coverage picture blended in one colour into a larger picture, its
// pixels wrapped around the target's edges so that what leaves one side enters at the opposite
// one. Moving a stamp by whole multiples of the target's size thus changes nothing, which is what
// lets the frame sets' animations loop without a seam.
#pragma once

#include <cstdint>

// Wraps a coordinate into 0 .. size - 1: a value at or beyond the size becomes value % size, a
// negative one size - (|value| % size), or 0 when that remainder is 0.
int32_t WrapCoordinate(int32_t value, int32_t size);

// Blends `colour` (0x00BBGGRR) into the locked 24 or 32-bit Packed DIB `target` through the locked
// 24 or 32-bit Packed DIB `stamp`, whose top-left pixel lands at (x, y) and whose blue byte is the
// coverage a. Below full opacity a = (a * opacity) / 255. Per channel
// out = (colour * a) / 255 + (old * (255 - a)) / 255, each term truncated. Returns 1, or 0 when a
// picture has another depth or no pixels (nothing is then changed).
int StampWrapped(void* target, const void* stamp, int32_t x, int32_t y, uint32_t colour,
                 int32_t opacity);
