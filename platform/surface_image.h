// The Packed DIB behind a render surface: both ports allocate and describe it the same way.
#pragma once

#include "platform/surface.h"

// Zeroes the surface, then allocates its 24-bit Packed DIB (header only, no table) and keeps it
// locked in `header`. Returns 1, or 0 with the surface zeroed.
int AllocateSurfaceImage(int32_t width, int32_t height, RenderSurface* surface);
// Unlocks the surface's image and frees it unless `flags` keeps it.
void FinishSurfaceImage(RenderSurface* surface, uint32_t flags);
