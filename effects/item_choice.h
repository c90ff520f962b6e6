// The random choices shared by the frame sets' items: the colours a page enables, and the draw of
// one entry of a short list that avoids repeating the previous item's entry.
#pragma once

#include <cstdint>

#include "platform/dialog.h"

// Copies Color 1 and each colour from 2 to 5 whose Enable check is on (`enabled[1]` to
// `enabled[4]`; `enabled[0]` is not read) into `out`, in order. Returns how many, 1 to 5.
int32_t CollectItemColours(const uint32_t colours[5], const int32_t enabled[5], uint32_t out[5]);

// An index below `count`: 0 without drawing when count is below 2; else up to 16 draws of
// rand() % count, stopping at the first that differs from *last (after 16 equal draws the equal
// one stands). *last takes the result.
int32_t DrawItemIndex(int32_t count, int32_t* last);

// Reads the colour buttons firstId, firstId + 2, ... firstId + 8 and the Enable checks enableId to
// enableId + 3 (colours 2 to 5) into `colors`, as CollectItemColours does. Returns 1 to 5.
int32_t ReadItemColours(WindowHandle dialog, int32_t firstId, int32_t enableId, uint32_t colors[5]);
