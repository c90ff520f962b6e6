// Copies between pictures, flat fills and the four rolls. Coordinates run from the top-left
// corner; pictures are Packed DIB handles, locked here only while their bytes are touched (a
// caller may hold its own lock meanwhile). New pictures are the caller's to free.
#pragma once

#include <cstdint>

#include "platform/memory.h"

// A zeroed picture with the size, depth and colour table of `image`, or null.
MovableHandle CreateImageLike(MovableHandle image);

// Copies a width by height block from (sourceX, sourceY) of `source` to (targetX, targetY) of
// `target`, pixel value by pixel value; a pixel moves only when both ends lie inside their
// pictures. No blending. Returns 1.
int CopyImageRect(MovableHandle target, int32_t targetX, int32_t targetY, MovableHandle source,
                  int32_t sourceX, int32_t sourceY, int32_t width, int32_t height);

// A new width by height picture of the depth and colour table of `image`, holding the block from
// (left, top); the parts of the block outside `image` stay zero. Null when memory fails.
MovableHandle CropImage(MovableHandle image, int32_t left, int32_t top, int32_t width,
                        int32_t height);

// Sets the top-left width by height pixels of `image` to `colour`. Returns 1.
int FillImageRect(MovableHandle image, int32_t width, int32_t height, uint32_t colour);
// Sets every pixel of a locked 24-bit picture (its header, as CreatePackedDib made it) to
// `colour`, a pixel value as WriteDibPixel takes it, one row built and copied to the others.
void FillRows24(void* picture, uint32_t colour);

// New pictures of the same size moved by `distance` rows or columns, what leaves one edge coming
// back at the other: RollDown brings the bottom rows to the top, RollRight the rightmost columns
// to the left, and RollUp and RollLeft the opposite. Null when memory fails.
MovableHandle RollDown(MovableHandle image, int32_t distance);
MovableHandle RollUp(MovableHandle image, int32_t distance);
MovableHandle RollRight(MovableHandle image, int32_t distance);
MovableHandle RollLeft(MovableHandle image, int32_t distance);
