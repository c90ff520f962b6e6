// The five colours of the particle and grid effects: Color 1 always, colours 2 to 5 when their
// Enable boxes are checked, and the seeded pick that avoids repeating the previous item's colour.
#pragma once

#include <cstdint>

#include "platform/dialog.h"

// Reads the colour buttons firstId, firstId + 2, ... firstId + 8 and the Enable checks
// enableId to enableId + 3 (colours 2 to 5) into `colors`; returns how many were taken, 1 to 5.
int32_t ReadItemColours(WindowHandle dialog, int32_t firstId, int32_t enableId, uint32_t colors[5]);
// An index into `count` colours: none drawn with one colour; otherwise up to 16 draws of
// rand() % count, stopping at the first that differs from `*last`. `*last` becomes the result.
int32_t PickItemColour(int32_t count, int32_t* last);
