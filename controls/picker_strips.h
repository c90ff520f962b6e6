// The pickers' pictures: one strip per picker kind, a 24-bit Packed DIB with one 25 by 25 pixel
// picture per cell side by side, an arrow in black on a given fill colour. They stand in the
// strip resources 7104, 7105, 7106 and 7110, drawn by code so that they stay sharp and need no
// resource files. Painting copies the square of side h - 4 at (h * cell + 2, 2) of a strip.
#pragma once

#include <cstdint>

#include "platform/dialog.h"
#include "platform/memory.h"

constexpr int32_t kPickerStripHeight = 25;

// The strip of a picker kind on `fill` (0x00BBGGRR), or null for other kinds or on failure.
MovableHandle CreatePickerStrip(ControlKind kind, uint32_t fill);
