// Tiling one rendered cell over the canvas: the cell is copied at every multiple of its own size
// from the origin, so the canvas's upper left corner holds the cell's upper left corner and the
// copies at the right and lower edges are clipped.
#pragma once

#include <cstdint>

#include "platform/memory.h"

// A new picture of max(width, cell width) by max(height, cell height) with the cell's depth,
// covered by copies of the 24 or 32-bit `cell`; or null (the cell is never freed).
MovableHandle TileCellOverCanvas(MovableHandle cell, int32_t width, int32_t height);
