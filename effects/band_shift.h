// Bands of a picture shifted cyclically along their length: what leaves one end of a band comes
// back at the other. Effects that slide strips of the finished picture past each other (Zipper's
// teeth, Tram Lines' bars) draw each frame as a copy of the picture with its bands shifted.
#pragma once

#include <cstdint>

#include "platform/memory.h"

// Copies the rows [start, start + size) of `picture` into `frame` shifted right by `distance`
// (left when negative), or with `columns` the columns [start, start + size) shifted down (up when
// negative), wrapping round. `frame` and `picture` are distinct pictures of one size and depth;
// any distance is taken modulo the band's length. Returns 1.
int ShiftBand(MovableHandle frame, MovableHandle picture, bool columns, int32_t start, int32_t size,
              int32_t distance);

// The size of a Packed DIB picture; 0 when it cannot be locked.
int PictureSize(MovableHandle picture, int32_t* width, int32_t* height);
